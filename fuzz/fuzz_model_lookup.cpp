#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/Require.h"

#include "KestrelCore/Support/AsciiCase.h"
#include "KestrelCore/Usage/ModelRateCard.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrel;
  const std::string id(reinterpret_cast<const char*>(data), size);
  const auto window = ModelRateCard::contextWindow(id);
  const auto rates = ModelRateCard::rates(id);
  require(window.has_value() == rates.has_value(), "both tables know the same models");
  require(!window || *window > 0, "a window is a size");
  require(ModelRateCard::estimateCost(id, {.inputTokens = 1}).has_value() == rates.has_value(),
          "who has a price has a cost");
  require(ModelRateCard::contextWindow(" " + lowerCased(id) + "\n") == window,
          "case and blanks do not count");
  // Text around an id may only lead to a longer key, never lose the one that was found.
  require(!rates || ModelRateCard::rates("x" + id + "x").has_value(), "an id is found inside others");
  return 0;
}
