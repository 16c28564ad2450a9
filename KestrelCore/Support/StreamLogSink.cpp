#include "KestrelCore/Support/StreamLogSink.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cmath>
#include <ctime>
#include <fmt/format.h>
#include <unistd.h>
#include <utility>

namespace kestrel {
namespace {

constexpr bool isControl(unsigned char byte) {
  return byte < 0x20 || byte == 0x7f;
}

std::string timeOfDay(Date date) {
  const auto seconds = static_cast<std::time_t>(std::floor(date.secondsSince1970()));
  std::tm local{};
  ::localtime_r(&seconds, &local);
  std::array<char, 16> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%H:%M:%S", &local)};
}

void writeLine(int descriptor, std::string line) {
  if (line.size() >= PIPE_BUF) {
    std::size_t length = PIPE_BUF - 1;
    while ((line[length] & 0xc0) == 0x80) --length;  // Not within a UTF-8 sequence.
    line.resize(length);
  }
  line += '\n';
  // A log that cannot be written has nowhere to say so.
  while (::write(descriptor, line.data(), line.size()) < 0 && errno == EINTR) {
  }
}

class StreamLogSink final : public LogSink {
 public:
  StreamLogSink(int descriptor, LogLineStyle style, std::shared_ptr<const Clock> clock)
      : descriptor_(descriptor), style_(style), clock_(std::move(clock)) {}

  [[nodiscard]] bool isEnabled(LogLevel level) const override { return level != LogLevel::debug; }

  void write(const LogRecord& record) override {
    if (!isEnabled(record.level)) return;
    const Date now = clock_->now();
    writeLine(descriptor_,
              fmt::format("{} {}{}: {}", style_ == LogLineStyle::terminal ? timeOfDay(now) : iso8601(now),
                          record.level == LogLevel::error ? "error " : "", record.category,
                          withoutControls(record.message)));
  }

 private:
  const int descriptor_;
  const LogLineStyle style_;
  const std::shared_ptr<const Clock> clock_;
};

}  // namespace

std::shared_ptr<LogSink> makeStreamLogSink(int descriptor, LogLineStyle style,
                                           std::shared_ptr<const Clock> clock) {
  return std::make_shared<StreamLogSink>(descriptor, style, std::move(clock));
}

std::string withoutControls(std::string_view message) {
  std::string result;
  for (std::size_t i = 0; i < message.size(); ++i) {
    const auto byte = static_cast<unsigned char>(message[i]);
    const auto next = i + 1 < message.size() ? static_cast<unsigned char>(message[i + 1]) : 0;
    if (byte == '\n') {
      result += "\\n";
    } else if (isControl(byte)) {
      result += fmt::format("\\x{:02x}", byte);
    } else if (byte == 0xc2 && next >= 0x80 && next < 0xa0) {  // U+0080 to U+009F, in UTF-8
      result += fmt::format("\\x{:02x}", next);
      ++i;
    } else {
      result += message[i];
    }
  }
  return result;
}

}  // namespace kestrel
