#include "KestrelCore/Presentation/StatusMenu.h"

#include <fmt/format.h>

namespace kestrel {
namespace {

std::string header(const WakeDecision& decision, std::int64_t workingCount) {
  if (const auto* hold = decision.asHold())
    return fmt::format("Kestrel — Awake: {} ({} active)", hold->reason, workingCount);
  if (const auto* blocked = decision.asBlocked())
    return fmt::format("Kestrel — Blocked: {}", rawValue(blocked->block));
  return fmt::format("Kestrel — Ready: {}", decision.asRelease()->reason);
}

}  // namespace

std::vector<StatusMenuItem> statusMenu(const WakeDecision& decision, std::int64_t workingCount,
                                       bool isMasterEnabled, bool isPaused) {
  const StatusMenuItem separator;
  std::vector<StatusMenuItem> menu{{header(decision, workingCount)},
                                   separator,
                                   {"Open Kestrel…", StatusMenuAction::openKestrel},
                                   separator};
  if (isPaused) menu.push_back({"Resume Protection", StatusMenuAction::resume});
  menu.push_back({"Pause for 30 Minutes", StatusMenuAction::pause30Minutes});
  menu.push_back({"Pause for 1 Hour", StatusMenuAction::pause1Hour});
  menu.push_back({isMasterEnabled ? "Disable Kestrel" : "Enable Kestrel", StatusMenuAction::toggleMaster});
  menu.push_back(separator);
  menu.push_back({"Settings…", StatusMenuAction::settings});
  menu.push_back(separator);
  menu.push_back({"Quit Kestrel", StatusMenuAction::quit});
  return menu;
}

}  // namespace kestrel
