#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

// Readers for what Kestrel wrote itself: a missing key and null are absent, and any other value of the wrong
// type throws a DecodingError that names the key, because the file is damaged then.

std::optional<std::string> stringIfPresent(const Json& object, std::string_view key);
std::optional<std::int64_t> integerIfPresent(const Json& object, std::string_view key);
std::optional<double> doubleIfPresent(const Json& object, std::string_view key);
std::optional<Date> dateIfPresent(const Json& object, std::string_view key);

/// The value of a key that has to be there, whatever its type.
const Json& requiredMember(const Json& object, std::string_view key);
/// Null when the key is missing or its value is null.
const Json* memberIfPresent(const Json& object, std::string_view key);

}  // namespace kestrel
