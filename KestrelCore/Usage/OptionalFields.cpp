#include "KestrelCore/Usage/OptionalFields.h"

#include "KestrelCore/Support/Json.h"

namespace kestrel {

const Json* memberIfPresent(const Json& object, std::string_view key) {
  const auto member = object.find(key);
  return member == object.end() || member->is_null() ? nullptr : &*member;
}

const Json& requiredMember(const Json& object, std::string_view key) {
  if (const Json* member = memberIfPresent(object, key)) return *member;
  throw DecodingError("Missing required key '" + std::string(key) + "'");
}

std::optional<std::string> stringIfPresent(const Json& object, std::string_view key) {
  if (memberIfPresent(object, key) == nullptr) return std::nullopt;
  return requiredString(object, key);
}

std::optional<std::int64_t> integerIfPresent(const Json& object, std::string_view key) {
  if (memberIfPresent(object, key) == nullptr) return std::nullopt;
  return requiredInteger(object, key);
}

std::optional<double> doubleIfPresent(const Json& object, std::string_view key) {
  if (memberIfPresent(object, key) == nullptr) return std::nullopt;
  return requiredDouble(object, key);
}

std::optional<Date> dateIfPresent(const Json& object, std::string_view key) {
  const auto seconds = doubleIfPresent(object, key);
  return seconds ? std::optional(Date::sinceReferenceDate(*seconds)) : std::nullopt;
}

}  // namespace kestrel
