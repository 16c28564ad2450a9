#include <algorithm>
#include <cmath>
#include <cstdint>

#include "fuzz/Require.h"

#include "KestrelCore/Agents/HookEvent.h"
#include "KestrelCore/Support/DecodingError.h"

namespace {

using namespace kestrel;

void checkRoundTrip(const HookEvent& event) {
  require(!event.sessionId.empty(), "a session has an identity");
  require(std::isfinite(event.timestamp.secondsSince1970()), "the timestamp is finite");
  HookEvent again = HookEvent::parse(event.toJSONData(), Date());
  // The wire counts from 1970, the date from 2001: the last bit may differ.
  const double seconds = event.timestamp.secondsSinceReferenceDate();
  require(std::abs(again.timestamp - event.timestamp) <= std::max(1e-6, std::abs(seconds) * 1e-15),
          "the timestamp survives");
  again.timestamp = event.timestamp;
  require(again == event, "an encoded event decodes to itself");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    checkRoundTrip(HookEvent::parse({reinterpret_cast<const char*>(data), size}, Date::since1970(1.5e9)));
  } catch (const DecodingError& error) {
    require(*error.what() != '\0', "an error says what is wrong");
  }
  return 0;
}
