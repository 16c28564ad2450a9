#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Support/RawValue.h"

// For .cpp files only: it brings in the JSON library. Headers include JsonForward.h.

namespace kestrel {

/// Parses one JSON document. Throws DecodingError when the bytes are not one, or are nested deeper than
/// kMaximumJsonDepth.
Json parseJson(std::string_view bytes);

/// Like `parseJson`, and throws when the document is not an object.
Json parseJsonObject(std::string_view bytes);

/// Compact text, never throws: bytes that are not UTF-8 become the replacement character. Keys are sorted.
std::string dumpJson(const Json& json);

/// Whether the object has the key, and not with a null.
bool isGiven(const Json& object, std::string_view key);

// Lenient readers: absent when the key is missing or its value has another type.

std::optional<std::string> optionalString(const Json& object, std::string_view key);
std::optional<bool> optionalBool(const Json& object, std::string_view key);
/// A whole number that fits; 15.0 counts, 15.5 and numbers out of range do not.
std::optional<std::int64_t> optionalInteger(const Json& object, std::string_view key);
/// Any finite number.
std::optional<double> optionalDouble(const Json& object, std::string_view key);
/// A number of seconds since 2001.
std::optional<Date> optionalDate(const Json& object, std::string_view key);

// Strict readers: throw DecodingError that names the key.

std::string requiredString(const Json& object, std::string_view key);
bool requiredBool(const Json& object, std::string_view key);
std::int64_t requiredInteger(const Json& object, std::string_view key);
double requiredDouble(const Json& object, std::string_view key);
Date requiredDate(const Json& object, std::string_view key);

/// A required string that is one of the enumeration's raw values.
template <typename Enum>
Enum requiredRawValue(const Json& object, std::string_view key) {
  const std::string raw = requiredString(object, key);
  if (const auto value = fromRawValue<Enum>(raw)) return *value;
  throw DecodingError("Unknown value for key '" + std::string(key) + "'");
}

/// Sets a key only when there is a value.
template <typename Value>
void setIfPresent(Json& object, std::string_view key, const std::optional<Value>& value) {
  if (value) object[std::string(key)] = *value;
}

}  // namespace kestrel
