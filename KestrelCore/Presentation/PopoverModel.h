#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Presentation/AgentFamilyPresentation.h"
#include "KestrelCore/Presentation/HeadlineModel.h"
#include "KestrelCore/Presentation/PopoverRow.h"
#include "KestrelCore/Presentation/PowerStripModel.h"
#include "KestrelCore/Usage/UsageSeries.h"
#include "KestrelCore/Usage/UsageSummary.h"

namespace kestrel {

class AppCoordinator;
class LocalCalendar;

/// Everything that the popover depends on. Borrows the families.
struct PopoverFacts {
  KestrelDisplayState display;
  HoldStatus hold;
  PowerStripFacts power;
  const std::vector<AgentFamilyPresentation>* families = nullptr;
  /// Absent until the account was read.
  std::optional<UsageSummary> today;
  HourlyTokens tokensByHour{};
  /// 0 to 23, of this moment.
  int hour = 0;
  bool isMasterEnabled = true;
  bool isManualHold = false;
  Date now;
};

/// The facts of the moment. Main thread; good until the next evaluation.
PopoverFacts popoverFacts(AppCoordinator& coordinator, const LocalCalendar& calendar);

/// What today used.
struct TodayModel {
  std::string line;
  /// Exact figures, in several lines; empty while nothing is known.
  std::string details;
  /// Tokens; absent while nothing is known.
  std::optional<HourlyTokens> hours;
  int currentHour = 0;

  friend bool operator==(const TodayModel&, const TodayModel&) = default;
};

struct PopoverControls {
  bool isMasterOn = true;
  /// "Resume" stands in place of "Pause".
  bool showsResume = false;
  bool isKeepAwakeOn = false;
  /// With the master switch off neither would change anything.
  bool canPauseOrKeepAwake = true;

  friend bool operator==(const PopoverControls&, const PopoverControls&) = default;
};

/// What the popover shows, from the top.
struct PopoverModel {
  HeadlineModel headline;
  PowerStripModel power;
  /// None: no agent was seen.
  std::vector<PopoverRow> rows;
  TodayModel today;
  PopoverControls controls;

  friend bool operator==(const PopoverModel&, const PopoverModel&) = default;
};

PopoverModel popoverModel(const PopoverFacts& facts);

}  // namespace kestrel
