#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kestrel {

/// How many of the bytes belong to the JSON object that they begin with, blanks before it included; absent
/// while more of it has to come. Finds the end only, and leaves it to the parser whether it is JSON: bytes
/// that can never become an object count as a whole, so that nobody waits for their end.
std::optional<std::size_t> endOfJsonObject(std::string_view bytes);

}  // namespace kestrel
