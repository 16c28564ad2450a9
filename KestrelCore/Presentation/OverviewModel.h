#pragma once

#include <map>
#include <string>
#include <vector>

#include "KestrelCore/Presentation/DismissedAlerts.h"
#include "KestrelCore/Presentation/PopoverModel.h"
#include "KestrelCore/Presentation/TimelineBand.h"
#include "KestrelCore/Support/LocalCalendar.h"

namespace kestrel {

class AppCoordinator;

/// One of the large figures.
struct OverviewFigure {
  /// "6 h 41 min", "1.2M", "$8.40"; a dash when it is not known.
  std::string value;
  /// What it is: "held today". When it is not known, the reason.
  std::string caption;
  /// The exact value; may be empty.
  std::string tooltip;
  bool isKnown = true;

  friend bool operator==(const OverviewFigure&, const OverviewFigure&) = default;
};

/// A card that says that something runs low.
struct OverviewAlert {
  AlertKey key;
  /// "Codex CLI: Account quota is low (12% remaining)".
  std::string title;
  /// "resets in 2 h 10 min · measured 40 s ago".
  std::string detail;

  friend bool operator==(const OverviewAlert&, const OverviewAlert&) = default;
};

/// Everything that the overview depends on. Borrows what it points to.
struct OverviewFacts {
  /// What the popover shows too: the headline, the agents, today's sums.
  PopoverFacts popover;
  const std::map<AgentType, ProviderBudgetReport>* reports = nullptr;
  const Timeline* timeline = nullptr;
  const LocalCalendar* calendar = nullptr;
  const DismissedAlerts* dismissed = nullptr;
};

/// The overview, from the top.
struct OverviewModel {
  /// The popover's.
  HeadlineModel headline;
  /// How far the system follows: "in force (login manager)"; empty while it does not.
  std::string hold;
  TimelineBand band;
  /// Held today, active agents, tokens today, cost today.
  std::vector<OverviewFigure> figures;
  /// In the order of the agents.
  std::vector<OverviewAlert> alerts;

  friend bool operator==(const OverviewModel&, const OverviewModel&) = default;
};

OverviewModel overviewModel(const OverviewFacts& facts);

/// The facts of the moment. Main thread; good until the next evaluation.
OverviewFacts overviewFacts(AppCoordinator& coordinator, const LocalCalendar& calendar,
                            const DismissedAlerts& dismissed);

}  // namespace kestrel
