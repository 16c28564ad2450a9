#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace kestrel {

/// With A to Z in lower case; all other bytes as they are, whatever the locale.
inline std::string lowerCased(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
  });
  return result;
}

}  // namespace kestrel
