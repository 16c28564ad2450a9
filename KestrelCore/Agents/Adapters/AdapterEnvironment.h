#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Platform/LogSink.h"

namespace kestrel {

/// Where the adapters look.
struct AdapterEnvironment {
  /// Stands before the fixed absolute paths of executables and applications; "/" but in tests.
  std::filesystem::path root = "/";
  std::filesystem::path home;
  /// The folders of executables as the variable PATH lists them, separated by ":".
  std::string searchPath;
  /// Whether process monitoring sees the agent; safe from any thread. Without it nothing runs.
  std::function<bool(AgentType)> isRunning;
  /// Hears of what could not be read or did not answer.
  std::shared_ptr<LogSink> logSink;
};

}  // namespace kestrel
