#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "KestrelCore/Agents/AgentStateCoordinator.h"
#include "KestrelCore/Agents/HookEventReceiver.h"
#include "KestrelCore/Agents/ProcessMonitor.h"
#include "KestrelCore/Diagnostics/DiagnosticsExporter.h"
#include "KestrelCore/GlobalShortcutController.h"
#include "KestrelCore/LaunchAtLoginController.h"
#include "KestrelCore/NotificationController.h"
#include "KestrelCore/Platform/Platform.h"
#include "KestrelCore/Policy/WakeDecision.h"
#include "KestrelCore/Policy/WakePolicyEngine.h"
#include "KestrelCore/Power/BatteryMonitor.h"
#include "KestrelCore/Power/DeepHoldSupervisor.h"
#include "KestrelCore/Power/HoldStatus.h"
#include "KestrelCore/Power/IdleWakeAssertionController.h"
#include "KestrelCore/Power/LidMonitor.h"
#include "KestrelCore/Power/ThermalMonitor.h"
#include "KestrelCore/Presentation/AgentFamilyPresentation.h"
#include "KestrelCore/Presentation/KestrelDisplayState.h"
#include "KestrelCore/Presentation/StatusSurface.h"
#include "KestrelCore/Presentation/TimelineRecorder.h"
#include "KestrelCore/Settings/SettingsStore.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Published.h"

namespace kestrel {

class KestrelWritePolicy;
class UsageCoordinator;

/// The spine: owns every collaborator, gathers their state once a second and at every change, asks the
/// policy, applies its decision, and publishes what the surfaces show. Main thread.
class AppCoordinator final : public std::enable_shared_from_this<AppCoordinator> {
 public:
  /// Everything here outlives the coordinator.
  struct Context {
    Platform& platform;
    Executor& mainExecutor;
    SettingsStore& settings;
    std::shared_ptr<const Clock> clock;
    std::shared_ptr<LogSink> logSink;
    std::shared_ptr<const KestrelWritePolicy> writePolicy;
    Directories directories;
    UsageCoordinator& usage;
  };

  using SessionList = std::vector<AgentSessionPtr>;

  static std::shared_ptr<AppCoordinator> create(const Context& context);
  ~AppCoordinator();
  AppCoordinator(const AppCoordinator&) = delete;
  AppCoordinator& operator=(const AppCoordinator&) = delete;

  /// Starts the monitors, the hook receiver and the timer, then evaluates once. Without a hook socket it goes
  /// on.
  void start();
  /// Stops them and releases every hold; nothing is evaluated any more. The helper is told meanwhile:
  /// `onReleased` is called on the main executor when it was, or could not be.
  void stop(std::function<void()> onReleased = [] {});

  /// One evaluation cycle.
  void evaluate();
  /// Asks for an evaluation soon; several requests make one. From any thread.
  void requestEvaluation();

  /// The last decision.
  [[nodiscard]] const Published<WakeDecision>& currentDecision() const { return currentDecision_; }
  /// When the current hold began; absent when not holding.
  [[nodiscard]] const Published<std::optional<Date>>& protectionStartedAt() const {
    return protectionStartedAt_;
  }
  /// All sessions, newest start first.
  [[nodiscard]] const Published<SessionList>& activeSessionsList() const { return activeSessionsList_; }
  /// The sessions by family, with what is left of each family's budget.
  [[nodiscard]] const Published<std::vector<AgentFamilyPresentation>>& agentFamilies() const {
    return agentFamilies_;
  }
  /// The mascot's mood.
  [[nodiscard]] const Published<KestrelVisualState>& dominantVisualState() const {
    return dominantVisualState_;
  }
  /// What the surfaces were shown last.
  [[nodiscard]] const KestrelDisplayState& displayState() const { return displayState_; }
  /// Shows the surface the state of the moment, and from now on that after each evaluation.
  void addSurface(std::shared_ptr<StatusSurface> surface);
  /// What was decided during the last day; each evaluation adds to it.
  [[nodiscard]] const Timeline& timeline() const { return timeline_.timeline(); }
  /// What the system says of the current hold.
  [[nodiscard]] const Published<HoldStatus>& hold() const { return hold_; }
  /// What the privileged helper last said; absent until it was asked for the first time.
  [[nodiscard]] const Published<std::optional<DeepSleepStatus>>& helperStatus() const {
    return deepHold_->helperStatus();
  }
  /// A snapshot of everything for people who help. Waits for a command of the system, at most two seconds.
  [[nodiscard]] DiagnosticsReport diagnosticsReport() const;
  /// The same as text.
  [[nodiscard]] std::string exportDiagnosticsJSON() const;
  /// Seconds since the current hold began, 0 without one.
  [[nodiscard]] double elapsedProtectionSeconds() const;

  /// Calls back at the end of each evaluation.
  [[nodiscard]] RegistrationPtr observeEvaluations(std::function<void()> onEvaluated);

  [[nodiscard]] SettingsStore& settings() { return settings_; }
  [[nodiscard]] UsageCoordinator& usage() { return usage_; }
  [[nodiscard]] LaunchAtLoginController& launchAtLogin() { return launchAtLogin_; }
  [[nodiscard]] const Clock& clock() const { return *clock_; }
  [[nodiscard]] const BatteryMonitoring& batteryMonitor() const { return *batteryMonitor_; }
  [[nodiscard]] const ThermalMonitoring& thermalMonitor() const { return *thermalMonitor_; }
  [[nodiscard]] const LidMonitoring& lidMonitor() const { return *lidMonitor_; }
  [[nodiscard]] const HookEventReceiver& hookReceiver() const { return *hookReceiver_; }
  [[nodiscard]] Platform& platform() { return platform_; }
  [[nodiscard]] const Directories& directories() const { return directories_; }
  [[nodiscard]] const std::shared_ptr<const AtomicFileWriter>& files() const { return files_; }
  /// Whether the system lets Kestrel hear its shortcut.
  [[nodiscard]] bool hearsShortcut() const { return shortcutController_.isMonitoring(); }
  [[nodiscard]] AgentStateCoordinator& agentCoordinator() { return *agentCoordinator_; }

 private:
  class EvaluationRequests;
  explicit AppCoordinator(const Context& context);
  void setupSubscriptions();
  void startHookReceiver();
  void mergeScan(const std::vector<ProcessMatch>& matches);
  void tick();
  void publishSessions(const std::shared_ptr<const SessionTable>& sessions);
  void publishFamilies();
  void renderSurfaces(const PolicyEvaluationContext& context);
  void toggleMasterSwitch();
  void rememberBatteryBlock(const WakeDecision& decision, const PolicyEvaluationContext& context);
  void handleDecisionTransition(const WakeDecision& from, const WakeDecision& to);
  void notifyOfTheEnd(const WakeDecision& decision);
  [[nodiscard]] std::vector<HoldEvidence> holdEvidence();
  [[nodiscard]] std::function<void()> evaluationRequest();

  Platform& platform_;
  Executor& mainExecutor_;
  std::shared_ptr<EvaluationRequests> requests_;
  SettingsStore& settings_;
  UsageCoordinator& usage_;
  const Directories directories_;
  const std::shared_ptr<const Clock> clock_;
  const Logger logger_;

  const std::shared_ptr<AgentStateCoordinator> agentCoordinator_;
  WakePolicyEngine policyEngine_;
  const std::unique_ptr<IdleWakeControlling> idleAssertionController_;
  std::unique_ptr<DeepHoldSupervisor> deepHold_;
  const std::unique_ptr<BatteryMonitoring> batteryMonitor_;
  const std::unique_ptr<ThermalMonitoring> thermalMonitor_;
  const std::unique_ptr<LidMonitoring> lidMonitor_;
  const std::unique_ptr<HookEventReceiver> hookReceiver_;
  const std::unique_ptr<ProcessMonitor> processMonitor_;
  NotificationController notifications_;
  GlobalShortcutController shortcutController_;
  LaunchAtLoginController launchAtLogin_;
  const DiagnosticsExporter diagnostics_;
  const std::shared_ptr<const AtomicFileWriter> files_;
  TimelineRecorder timeline_;

  Published<WakeDecision> currentDecision_;
  Published<std::optional<Date>> protectionStartedAt_;
  Published<SessionList> activeSessionsList_;
  Published<std::vector<AgentFamilyPresentation>> agentFamilies_;
  Published<KestrelVisualState> dominantVisualState_;
  Published<HoldStatus> hold_;
  KestrelDisplayState displayState_;
  std::vector<std::shared_ptr<StatusSurface>> surfaces_;
  Signal<> evaluated_;

  WakeDecision previousDecision_;
  bool isStopped_ = false;
  bool isBatteryBlocked_ = false;
  /// The table that `activeSessionsList_` was made from.
  std::shared_ptr<const SessionTable> publishedTable_;
  /// Sessions or reports changed since the families were made.
  bool familiesAreOld_ = true;
  RegistrationPtr evalTimer_;
  std::vector<RegistrationPtr> subscriptions_;
};

}  // namespace kestrel
