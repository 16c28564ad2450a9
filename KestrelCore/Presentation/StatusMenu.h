#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KestrelCore/Policy/WakeDecision.h"

namespace kestrel {

enum class StatusMenuAction {
  none,
  openKestrel,
  resume,
  pause30Minutes,
  pause1Hour,
  toggleMaster,
  settings,
  quit
};

/// One line of the status icon's menu. An empty title is a separator; a line without an action cannot be
/// chosen.
struct StatusMenuItem {
  std::string title;
  StatusMenuAction action = StatusMenuAction::none;

  [[nodiscard]] bool isSeparator() const { return title.empty(); }
  [[nodiscard]] bool isEnabled() const { return action != StatusMenuAction::none; }

  friend bool operator==(const StatusMenuItem&, const StatusMenuItem&) = default;
};

/// The menu of the moment, from the top.
std::vector<StatusMenuItem> statusMenu(const WakeDecision& decision, std::int64_t workingCount,
                                       bool isMasterEnabled, bool isPaused);

}  // namespace kestrel
