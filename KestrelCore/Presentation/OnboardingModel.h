#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Power/DeepSleepStatus.h"
#include "KestrelCore/Presentation/AgentInspection.h"
#include "KestrelCore/Presentation/KestrelVisualState.h"
#include "KestrelCore/Presentation/OnboardingTrial.h"

namespace kestrel {

/// A picture of the blob and what it means.
struct OnboardingPicture {
  KestrelVisualState state = KestrelVisualState::idle;
  std::string title;
  std::string text;

  friend bool operator==(const OnboardingPicture&, const OnboardingPicture&) = default;
};

/// An agent that was found, or a permission. The state is a word, never a colour alone.
struct OnboardingRow {
  /// The agent's raw value, "notifications" or "helper".
  std::string key;
  std::string title;
  std::string text;
  bool isDone = false;
  /// What its button says; empty without one.
  std::string action;

  friend bool operator==(const OnboardingRow&, const OnboardingRow&) = default;
};

struct OnboardingPage {
  std::string title;
  std::string text;
  std::vector<OnboardingPicture> pictures;
  std::vector<OnboardingRow> rows;

  friend bool operator==(const OnboardingPage&, const OnboardingPage&) = default;
};

struct OnboardingFacts {
  /// Absent before the first check.
  const std::optional<AgentInspection::Result>* inspection = nullptr;
  bool notificationsAvailable = false;
  bool notificationsEnabled = false;
  /// Absent while the helper was not asked yet.
  std::optional<DeepSleepStatus> helper{};
  OnboardingTrial::Report trial{};
  bool trialIsUnderWay = false;
};

/// What it does, the agents, permissions, a trial: four pages.
struct OnboardingModel {
  std::vector<OnboardingPage> pages;
  /// Of the last page.
  std::string trialButton;
  bool canTry = true;

  friend bool operator==(const OnboardingModel&, const OnboardingModel&) = default;
};

OnboardingModel onboardingModel(const OnboardingFacts& facts);

/// The facts of the moment. Main thread.
OnboardingFacts onboardingFacts(AppCoordinator& coordinator, const AgentInspection& inspection,
                                const OnboardingTrial& trial);

}  // namespace kestrel
