#include <cstdint>
#include <string>

#include "fuzz/Require.h"

#include "KestrelCore/Usage/Providers/JsonPicker.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrel;
  static JsonPicker json{"a", "b.c", "b.d.e", "b"};
  std::string padded(reinterpret_cast<const char*>(data), size);
  padded.resize(size + JsonPicker::kPadding);
  if (!json.read({padded.data(), size})) return 0;
  for (std::size_t path = 0; path < 4; ++path) {
    const auto tokens = json.tokens(path);
    require(!tokens || (*tokens >= 0 && *tokens <= JsonPicker::kMaximumTokens), "a count is one that can be");
    require(!tokens || json.integer(path) == tokens, "a count is a whole number");
    require(!json.integer(path) || json.number(path).has_value(), "a whole number is a number");
  }
  return 0;
}
