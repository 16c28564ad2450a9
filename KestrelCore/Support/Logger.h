#pragma once

#include <fmt/core.h>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "KestrelCore/Platform/LogSink.h"

namespace kestrel {

inline constexpr std::string_view kAppSubsystem = "com.kestrel.app";
inline constexpr std::string_view kHelperSubsystem = "com.kestrel.helper";

/// A handle on the log with one subsystem and category. Cheap to copy; safe from any thread.
class Logger {
 public:
  Logger(std::shared_ptr<LogSink> sink, std::string_view category, std::string_view subsystem = kAppSubsystem)
      : sink_(std::move(sink)), subsystem_(subsystem), category_(category) {}

  template <typename... Arguments>
  void debug(fmt::format_string<Arguments...> format, Arguments&&... arguments) const {
    write(LogLevel::debug, {}, format, fmt::make_format_args(arguments...));
  }
  template <typename... Arguments>
  void info(fmt::format_string<Arguments...> format, Arguments&&... arguments) const {
    write(LogLevel::info, {}, format, fmt::make_format_args(arguments...));
  }
  template <typename... Arguments>
  void error(fmt::format_string<Arguments...> format, Arguments&&... arguments) const {
    write(LogLevel::error, {}, format, fmt::make_format_args(arguments...));
  }
  /// An error whose text changes at each repeat (an age, a counter); lines with the same key are repeats.
  template <typename... Arguments>
  void repeatingError(std::string_view key, fmt::format_string<Arguments...> format,
                      Arguments&&... arguments) const {
    write(LogLevel::error, key, format, fmt::make_format_args(arguments...));
  }

 private:
  void write(LogLevel level, std::string_view repeatKey, fmt::string_view format,
             fmt::format_args arguments) const;

  std::shared_ptr<LogSink> sink_;
  std::string subsystem_;
  std::string category_;
};

}  // namespace kestrel
