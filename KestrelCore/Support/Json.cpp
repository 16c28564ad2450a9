#include "KestrelCore/Support/Json.h"

#include <cmath>
#include <limits>

namespace kestrel {
namespace {

bool exceedsMaximumDepth(std::string_view bytes) {
  std::size_t depth = 0;
  bool inString = false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (inString) {
      if (c == '\\') ++i;
      inString = c != '"';
    } else if (c == '"') {
      inString = true;
    } else if (c == '{' || c == '[') {
      if (++depth > kMaximumJsonDepth) return true;
    } else if ((c == '}' || c == ']') && depth > 0) {
      --depth;
    }
  }
  return false;
}

const Json* find(const Json& object, std::string_view key) {
  const auto entry = object.find(key);
  return entry == object.end() ? nullptr : &*entry;
}

template <typename Value>
Value required(std::optional<Value> value, const Json& object, std::string_view key, const char* kind) {
  if (value) return *std::move(value);
  if (find(object, key) == nullptr) throw DecodingError("Missing required key '" + std::string(key) + "'");
  throw DecodingError("The value for key '" + std::string(key) + "' is not " + kind);
}

std::optional<std::int64_t> wholeNumber(double value) {
  // 2^63 is the first double beyond the range.
  constexpr double kLimit = 9'223'372'036'854'775'808.0;
  if (!(value >= -kLimit && value < kLimit) || value != std::trunc(value)) return std::nullopt;
  return static_cast<std::int64_t>(value);
}

DecodingError invalidAt(std::size_t byte) {
  return DecodingError("The data is not valid JSON (at byte " + std::to_string(byte) + ")");
}

}  // namespace

Json parseJson(std::string_view bytes) {
  // To the library a NUL is the end, whatever follows.
  if (const auto nul = bytes.find('\0'); nul != std::string_view::npos) throw invalidAt(nul + 1);
  if (exceedsMaximumDepth(bytes)) throw DecodingError("The JSON data is nested too deeply");
  try {
    return Json::parse(bytes);
  } catch (const Json::parse_error& error) {
    throw invalidAt(error.byte);
  } catch (const Json::exception&) {
    throw DecodingError("The JSON data holds a number that is out of range");
  }
}

Json parseJsonObject(std::string_view bytes) {
  Json json = parseJson(bytes);
  if (!json.is_object()) throw DecodingError("The JSON data is not an object");
  return json;
}

std::string dumpJson(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool isGiven(const Json& object, std::string_view key) {
  const auto member = object.find(key);
  return member != object.end() && !member->is_null();
}

std::optional<std::string> optionalString(const Json& object, std::string_view key) {
  const Json* value = find(object, key);
  if (value == nullptr || !value->is_string()) return std::nullopt;
  return value->get<std::string>();
}

std::optional<bool> optionalBool(const Json& object, std::string_view key) {
  const Json* value = find(object, key);
  if (value == nullptr || !value->is_boolean()) return std::nullopt;
  return value->get<bool>();
}

std::optional<std::int64_t> optionalInteger(const Json& object, std::string_view key) {
  const Json* value = find(object, key);
  if (value == nullptr || !value->is_number()) return std::nullopt;
  if (value->is_number_float()) return wholeNumber(value->get<double>());
  if (!value->is_number_unsigned()) return value->get<std::int64_t>();
  const auto number = value->get<std::uint64_t>();
  if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return std::nullopt;
  return static_cast<std::int64_t>(number);
}

std::optional<double> optionalDouble(const Json& object, std::string_view key) {
  const Json* value = find(object, key);
  if (value == nullptr || !value->is_number()) return std::nullopt;
  const double number = value->get<double>();
  return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<Date> optionalDate(const Json& object, std::string_view key) {
  const auto seconds = optionalDouble(object, key);
  return seconds ? std::optional(Date::sinceReferenceDate(*seconds)) : std::nullopt;
}

std::string requiredString(const Json& object, std::string_view key) {
  return required(optionalString(object, key), object, key, "a string");
}
bool requiredBool(const Json& object, std::string_view key) {
  return required(optionalBool(object, key), object, key, "true or false");
}
std::int64_t requiredInteger(const Json& object, std::string_view key) {
  return required(optionalInteger(object, key), object, key, "a whole number");
}
double requiredDouble(const Json& object, std::string_view key) {
  return required(optionalDouble(object, key), object, key, "a number");
}
Date requiredDate(const Json& object, std::string_view key) {
  return required(optionalDate(object, key), object, key, "a date");
}

}  // namespace kestrel
