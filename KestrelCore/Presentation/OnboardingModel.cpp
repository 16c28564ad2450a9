#include "KestrelCore/Presentation/OnboardingModel.h"

#include <fmt/format.h>

#include "KestrelCore/AppCoordinator.h"

namespace kestrel {
namespace {

OnboardingPage welcome() {
  return {"Your agents work, your computer stays awake",
          "Kestrel sees when a coding agent works and keeps this computer awake until it is done.",
          {{KestrelVisualState::working, "An agent works", "The computer stays awake, and you see for whom."},
           {KestrelVisualState::waiting, "It waits for you", "A question waits; the computer waits with it."},
           {KestrelVisualState::idle, "All is done", "Kestrel lets go, and the computer sleeps as usual."}},
          {}};
}

OnboardingRow agentRow(AgentType agent, const IntegrationStatus& status) {
  const bool needsSetUp = status.isInstalled && !status.isIntegrationActive &&
                          defaultIntegrationType(agent) != IntegrationType::process;
  return {std::string(rawValue(agent)), std::string(displayName(agent)), status.statusMessage,
          status.isInstalled && !needsSetUp, needsSetUp ? "Set up…" : ""};
}

OnboardingPage agents(const std::optional<AgentInspection::Result>& result) {
  OnboardingPage page{"Agents on this computer",
                      "An agent that reports is followed exactly. The others are seen as processes.",
                      {},
                      {}};
  if (!result) {
    page.text = "Looking for agents…";
    return page;
  }
  for (const auto& [agent, status] : result->statuses) {
    if (status.isInstalled) page.rows.push_back(agentRow(agent, status));
  }
  if (page.rows.empty()) {
    page.text = "No agent was found. Kestrel notices by itself when you install and start one.";
  }
  return page;
}

OnboardingRow notificationsRow(const OnboardingFacts& facts) {
  OnboardingRow row{"notifications", "Notifications", "", false, ""};
  if (!facts.notificationsAvailable) {
    row.text = "This desktop shows no notifications; Kestrel works without them.";
  } else if (facts.notificationsEnabled) {
    row.text = "You are told when protection begins, ends or is cut off.";
    row.isDone = true;
  } else {
    row.text = "Switched off in the settings.";
    row.action = "Switch on";
  }
  return row;
}

OnboardingRow helperRow(const OnboardingFacts& facts) {
  OnboardingRow row{"helper", "Awake with the lid closed", "", false, ""};
  if (!facts.helper) {
    row.text = "The helper has not answered yet.";
  } else if (facts.helper->isHelperInstalled) {
    row.text = "The helper is installed.";
    row.isDone = true;
  } else {
    row.text = "Needs a small helper. Install it in a terminal: kestrelctl helper install";
  }
  return row;
}

std::string momentText(double seconds) {
  return seconds < 0.1 ? "less than 0.1 s" : fmt::format("{:.1f} s", seconds);
}

/// "wanted: login manager is not running", without what the sentence says already.
std::string obstacles(const std::string& hold) {
  const std::size_t colon = hold.find(": ");
  return colon == std::string::npos ? "no answer" : hold.substr(colon + 2);
}

std::string trialText(const OnboardingTrial::Report& report) {
  using Step = OnboardingTrial::Step;
  switch (report.step) {
    case Step::notTried:
      return "Send a test event, as an agent would, and see the hold arrive.";
    case Step::sending:
      return "Sending the event…";
    case Step::accepted:
      return "Kestrel took the event and asks the system to stay awake…";
    case Step::held:
      return fmt::format("It works: this computer is held awake, {}. That took {}.", report.detail,
                         momentText(report.holdAfterSeconds.value_or(0)));
    case Step::blocked:
      return fmt::format("Kestrel took the event, but may not hold now: {}.", report.detail);
    case Step::notConfirmed:
      return fmt::format("Kestrel took the event, but the system did not confirm the hold: {}.",
                         obstacles(report.detail));
    case Step::failed:
      return fmt::format("The event did not get through. {}.", report.detail);
  }
  return {};
}

KestrelVisualState trialMood(OnboardingTrial::Step step) {
  using Step = OnboardingTrial::Step;
  switch (step) {
    case Step::notTried:
      return KestrelVisualState::idle;
    case Step::sending:
    case Step::accepted:
      return KestrelVisualState::working;
    case Step::held:
      return KestrelVisualState::completed;
    case Step::blocked:
    case Step::notConfirmed:
    case Step::failed:
      break;
  }
  return KestrelVisualState::error;
}

}  // namespace

OnboardingModel onboardingModel(const OnboardingFacts& facts) {
  OnboardingModel model;
  model.pages = {welcome(),
                 agents(*facts.inspection),
                 {"Permissions", "Both are optional.", {}, {notificationsRow(facts), helperRow(facts)}},
                 {"Try it", trialText(facts.trial), {{trialMood(facts.trial.step), "", ""}}, {}}};
  const bool wasTried = facts.trial.step != OnboardingTrial::Step::notTried && !facts.trialIsUnderWay;
  model.trialButton = wasTried ? "Try again" : "Send a test event";
  model.canTry = !facts.trialIsUnderWay;
  return model;
}

OnboardingFacts onboardingFacts(AppCoordinator& coordinator, const AgentInspection& inspection,
                                const OnboardingTrial& trial) {
  return {.inspection = &inspection.result().get(),
          .notificationsAvailable = coordinator.platform().notifications->isAvailable(),
          .notificationsEnabled = coordinator.settings().notificationsEnabled(),
          .helper = coordinator.helperStatus().get(),
          .trial = trial.report().get(),
          .trialIsUnderWay = trial.isUnderWay()};
}

}  // namespace kestrel
