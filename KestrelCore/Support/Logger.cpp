#include "KestrelCore/Support/Logger.h"

#include <fmt/format.h>
#include <iterator>

namespace kestrel {

void Logger::write(LogLevel level, std::string_view repeatKey, fmt::string_view format,
                   fmt::format_args arguments) const {
  if (!sink_ || !sink_->isEnabled(level)) return;
  fmt::memory_buffer buffer;
  fmt::vformat_to(std::back_inserter(buffer), format, arguments);
  sink_->write({level, subsystem_, category_, std::string_view(buffer.data(), buffer.size()), repeatKey});
}

}  // namespace kestrel
