#include <cstdint>

#include "fuzz/Require.h"

#include "KestrelCore/Support/Date.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrel;
  const auto date = parseISO8601({reinterpret_cast<const char*>(data), size});
  if (!date) return 0;
  const std::string text = iso8601(*date);
  const auto again = parseISO8601(text);
  require(again.has_value(), "what is written can be read");
  require(iso8601(*again) == text, "what is read is written as it was");
  return 0;
}
