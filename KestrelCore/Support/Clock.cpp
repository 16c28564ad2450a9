#include "KestrelCore/Support/Clock.h"

#include <chrono>

namespace kestrel {

Date SystemClock::now() const {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return Date::since1970(std::chrono::duration<double>(sinceEpoch).count());
}

}  // namespace kestrel
