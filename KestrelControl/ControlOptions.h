#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Control/ControlProtocol.h"

namespace kestrel {

/// Exit statuses of kestrelctl.
inline constexpr int kControlDone = 0;
inline constexpr int kControlFailed = 1;
inline constexpr int kControlUsage = 2;
inline constexpr int kControlNotRunning = 3;

/// What is to be done about the privileged helper.
struct HelperOptions {
  /// status, install or uninstall.
  std::string verb;
  bool forThisUser = false;
  bool json = false;
};

/// Which part of the account of usage is wanted.
struct UsageOptions {
  /// today, days or sessions.
  std::string what;
  std::optional<std::size_t> limit;
  bool json = false;
};

/// Which agents are on this machine.
struct AgentsOptions {
  bool json = false;
};

/// How an agent is made to report.
struct SetupOptions {
  /// The agent's raw value.
  std::string agent;
  /// The older set-up.
  bool classic = false;
  bool json = false;
};

/// What the machine is to stay awake for.
struct RunOptions {
  /// The command and its arguments; never empty.
  std::vector<std::string> words;
};

/// What the words on the command line ask for.
struct ControlOptions {
  ControlRequest request;
  /// Present when not Kestrel is asked but its helper.
  std::optional<HelperOptions> helper;
  /// Present for the account of usage.
  std::optional<UsageOptions> usage;
  /// Present when the agents themselves are looked at.
  std::optional<AgentsOptions> agents;
  /// Present when an agent is to be set up.
  std::optional<SetupOptions> setup;
  /// Present when a command is to be run.
  std::optional<RunOptions> run;
  /// Ask again each second.
  bool watch = false;
  /// Print the result as JSON.
  bool json = false;
  /// Present when nothing is to be asked: help or the version was printed, or what is wrong with the words.
  std::optional<int> exitStatus;

  static ControlOptions parse(int argc, const char* const* argv);
};

}  // namespace kestrel
