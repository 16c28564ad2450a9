#include "KestrelCore/Support/JsonObjectEnd.h"

namespace kestrel {

std::optional<std::size_t> endOfJsonObject(std::string_view bytes) {
  const std::size_t start = bytes.find_first_not_of(" \t\r\n");
  if (start == std::string_view::npos) return std::nullopt;
  if (bytes[start] != '{') return bytes.size();
  std::size_t depth = 0;
  bool inString = false;
  for (std::size_t i = start; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (inString) {
      if (c == '\\') ++i;
      if (c == '"') inString = false;
    } else if (c == '"') {
      inString = true;
    } else if (c == '{') {
      ++depth;
    } else if (c == '}' && --depth == 0) {
      return i + 1;
    }
  }
  return std::nullopt;
}

}  // namespace kestrel
