#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// What the command line says. Empty values count as not given.
struct RelayOptions {
  std::optional<std::string> agent;
  /// A state's name, or "auto".
  std::optional<std::string> state;
  std::optional<std::string> sessionId;
  std::optional<std::string> cwd;
  std::optional<std::string> model;
  /// Positive.
  std::optional<std::int32_t> pid;
  bool strict = false;
  bool help = false;
  bool version = false;
  /// The last argument when it looks like a JSON object: some agents append their event to the command line.
  std::optional<std::string> jsonArgument;
  /// What is wrong with the arguments, one line each. Reported only with `--strict`.
  std::vector<std::string> problems;

  /// Never fails: what is not understood becomes a problem and is skipped.
  static RelayOptions parse(int argc, const char* const* argv);

  static const char* usage();
};

}  // namespace kestrel
