#pragma once

#include <cstdint>
#include <string>

#include "KestrelCore/Agents/AgentType.h"

namespace kestrel {

/// An agent found among the running processes by one scan.
struct ProcessMatch {
  AgentType agent = AgentType::custom;
  std::int32_t pid = 0;
  /// For display.
  std::string name;
  bool isRunning = true;
  /// The evidence says it is doing work now.
  bool isWorking = false;
  /// Command line or status text.
  std::string command;
};

}  // namespace kestrel
