#pragma once

#include <functional>

namespace kestrel {

class AgentInspection;
class AppCoordinator;
class DismissedAlerts;
class Executor;
class ExportToFile;
class LocalCalendar;
class OnboardingTrial;

/// What the views of the windows may use. Everything outlives them. Main thread.
struct ViewContext {
  AppCoordinator& coordinator;
  Executor& mainExecutor;
  AgentInspection& inspection;
  OnboardingTrial& trial;
  ExportToFile& exporter;
  const LocalCalendar& calendar;
  DismissedAlerts& dismissed;
  /// Opens the introduction; empty where there is none.
  std::function<void()> showIntroduction{};
};

}  // namespace kestrel
