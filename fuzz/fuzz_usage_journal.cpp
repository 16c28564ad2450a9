#include <algorithm>
#include <cstdint>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/Require.h"

#include "KestrelCore/Usage/UsageDecoder.h"
#include "KestrelCore/Usage/UsageJournal.h"
#include "KestrelCore/Usage/UsageJsonText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrel;
  static const int file = ::memfd_create("journal", MFD_CLOEXEC);
  require(::ftruncate(file, 0) == 0 && ::pwrite(file, data, size, 0) >= 0, "a file is written");
  UsageJournal journal("/proc/self/fd/" + std::to_string(file), nullptr);
  const auto replay = journal.replay([](const UsageEvent& event) {
    std::string text;
    appendJson(text, event);
    text.reserve(text.size() + UsageDecoder::kPadding);
    require(UsageDecoder().event(text) == event, "an event decodes to itself");
    return true;
  });
  const auto lines = static_cast<std::size_t>(std::count(data, data + size, '\n'));
  require(replay.events + replay.badLines == lines, "every line is counted");
  return 0;
}
