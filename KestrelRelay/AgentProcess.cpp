#include "KestrelRelay/AgentProcess.h"

#include <algorithm>
#include <string_view>

namespace kestrel {

namespace {

constexpr std::string_view kShells[] = {"sh", "bash", "dash", "zsh", "ksh", "fish", "busybox"};
/// More shells than this around one hook are a loop in the process table, which changes while it is read.
constexpr int kMaximumShells = 64;

bool isShell(std::string_view name) {
  return std::ranges::find(kShells, name) != std::end(kShells);
}

}  // namespace

std::optional<std::int32_t> nearestNonShell(std::int32_t start, const ProcessQuestions& questions) {
  std::optional<std::int32_t> pid = start;
  for (int i = 0; i < kMaximumShells && pid && *pid > 1; ++i) {
    const auto name = questions.name(*pid);
    if (!name) return std::nullopt;
    if (!isShell(*name)) return pid;
    pid = questions.parent(*pid);
  }
  return std::nullopt;
}

}  // namespace kestrel
