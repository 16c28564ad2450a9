#pragma once

#include <string_view>

namespace kestrel {

/// Debug is for development, info for state changes, error for failures.
enum class LogLevel { debug, info, error };

/// One line for the system's log. The texts live only during the call.
struct LogRecord {
  LogLevel level;
  std::string_view subsystem;
  std::string_view category;
  std::string_view message;
  /// Lines of one category with the same key count as repeats of each other; the message itself when empty.
  std::string_view repeatKey;
};

/// Where log lines go. Safe from any thread, never calls back into the system, never throws.
class LogSink {
 public:
  virtual ~LogSink() = default;
  [[nodiscard]] virtual bool isEnabled(LogLevel level) const = 0;
  virtual void write(const LogRecord& record) = 0;
};

}  // namespace kestrel
