#include "KestrelCore/AppCoordinator.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <iterator>
#include <unistd.h>
#include <utility>

#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {
namespace {

constexpr double kTickSeconds = 1.0;
constexpr double kScanSeconds = 1.0;
/// A hook session that has been stale for a day is forgotten.
constexpr double kForgetStaleAfterSeconds = 24 * 3600.0;

WakeDecision initialDecision() {
  return WakeDecision::release("Initializing");
}

}  // namespace

/// Brings requests for an evaluation to the main thread. Other threads hold on to this and never to the
/// coordinator, whose end has to be on the main thread.
class AppCoordinator::EvaluationRequests final : public AgentStateCoordinatorDelegate {
 public:
  EvaluationRequests(Executor& mainExecutor, std::weak_ptr<AppCoordinator> coordinator)
      : mainExecutor_(mainExecutor), coordinator_(std::move(coordinator)) {}

  void agentSessionsDidChange(std::optional<Date>) override { request(); }

  void request() {
    if (pending_.exchange(true)) return;
    mainExecutor_.post([weak = coordinator_] {
      const auto coordinator = weak.lock();
      if (coordinator && coordinator->requests_->pending_) coordinator->evaluate();
    });
  }
  /// An evaluation begins, which answers every request made so far.
  void answer() { pending_ = false; }

 private:
  Executor& mainExecutor_;
  const std::weak_ptr<AppCoordinator> coordinator_;
  std::atomic<bool> pending_{false};
};

std::shared_ptr<AppCoordinator> AppCoordinator::create(const Context& context) {
  std::shared_ptr<AppCoordinator> coordinator(new AppCoordinator(context));
  coordinator->setupSubscriptions();
  return coordinator;
}

AppCoordinator::AppCoordinator(const Context& context)
    : platform_(context.platform),
      mainExecutor_(context.mainExecutor),
      settings_(context.settings),
      usage_(context.usage),
      directories_(context.directories),
      clock_(context.clock),
      logger_(context.logSink, "coordinator"),
      agentCoordinator_(std::make_shared<AgentStateCoordinator>(context.clock, context.logSink)),
      idleAssertionController_(
          std::make_unique<IdleWakeAssertionController>(*context.platform.powerAssertions, context.logSink)),
      deepHold_(std::make_unique<DeepHoldSupervisor>(
          std::make_unique<DeepSleepController>(DeepSleepController::defaultSocketPath(context.directories),
                                                context.logSink),
          context.mainExecutor)),
      batteryMonitor_(std::make_unique<BatteryMonitor>(*context.platform.powerSource,
                                                       *context.platform.lowPowerMode, context.logSink)),
      thermalMonitor_(std::make_unique<ThermalMonitor>(*context.platform.thermal, context.logSink)),
      lidMonitor_(std::make_unique<LidMonitor>(*context.platform.lid, context.logSink)),
      hookReceiver_(std::make_unique<HookEventReceiver>(
          HookEventReceiver::defaultSocketPath(context.directories), context.platform.peerIdentity,
          context.writePolicy, context.clock, context.logSink)),
      processMonitor_(std::make_unique<ProcessMonitor>(
          *context.platform.processes, *context.platform.applications,
          AgentFootprints(context.directories.home), ::getpid(), context.clock)),
      notifications_(*context.platform.notifications, *context.platform.chime, context.settings,
                     context.logSink),
      shortcutController_(*context.platform.keyMonitor, context.logSink),
      launchAtLogin_(*context.platform.loginItem, context.logSink),
      diagnostics_({context.platform.osVersion, context.platform.assertionSummaryCommand,
                    context.directories.home.string()},
                   context.clock),
      files_(std::make_shared<const AtomicFileWriter>(context.writePolicy, Logger(context.logSink, "files"))),
      timeline_(TimelineRecorder::defaultFile(context.directories), files_,
                Logger(context.logSink, "timeline")),
      currentDecision_(initialDecision()),
      previousDecision_(initialDecision()) {}

AppCoordinator::~AppCoordinator() = default;

void AppCoordinator::setupSubscriptions() {
  requests_ = std::make_shared<EvaluationRequests>(mainExecutor_, weak_from_this());
  deepHold_->setOnChange(evaluationRequest());
  hookReceiver_->setDelegate(agentCoordinator_);
  agentCoordinator_->setDelegate(requests_);
  agentCoordinator_->setUsageHandler(
      [&usage = usage_](const HookEvent& event) { usage.handleHookEvent(event); });
  processMonitor_->setOnProcessesUpdated([this, weak = weak_from_this()](std::vector<ProcessMatch> matches) {
    mainExecutor_.post([weak, matches = std::move(matches)] {
      const auto coordinator = weak.lock();
      if (coordinator) coordinator->mergeScan(matches);
    });
  });
  batteryMonitor_->setOnPowerSourceChanged([request = evaluationRequest()](const auto&) { request(); });
  thermalMonitor_->setOnThermalStateChanged([request = evaluationRequest()](auto) { request(); });
  lidMonitor_->setOnLidStateChanged([request = evaluationRequest()](auto) { request(); });
  platform_.powerAssertions->setOnEvidenceChanged(evaluationRequest());
  subscriptions_.push_back(settings_.observe(evaluationRequest()));
  subscriptions_.push_back(usage_.latestBudgetReports().subscribe([weak = weak_from_this()](const auto&) {
    const auto coordinator = weak.lock();
    if (!coordinator) return;
    coordinator->familiesAreOld_ = true;
    coordinator->requestEvaluation();
  }));
  shortcutController_.setOnToggleRequested([weak = weak_from_this()] {
    if (const auto coordinator = weak.lock()) coordinator->toggleMasterSwitch();
  });
}

std::function<void()> AppCoordinator::evaluationRequest() {
  return [requests = requests_] { requests->request(); };
}

void AppCoordinator::start() {
  logger_.info("Starting Kestrel AppCoordinator...");
  isStopped_ = false;
  timeline_.load(clock_->now());
  notifications_.requestAuthorization();
  batteryMonitor_->start();
  thermalMonitor_->start();
  lidMonitor_->start();
  // The monitor takes no notice of changes; where the system tells of one, the lid is read afresh.
  subscriptions_.push_back(platform_.lid->observe([weak = weak_from_this()] {
    const auto coordinator = weak.lock();
    if (!coordinator) return;
    coordinator->lidMonitor_->start();
    coordinator->requestEvaluation();
  }));
  processMonitor_->start(kScanSeconds);
  startHookReceiver();
  shortcutController_.start();
  deepHold_->tick(clock_->now());
  evalTimer_ = mainExecutor_.repeat(kTickSeconds, kTickSeconds, [weak = weak_from_this()] {
    if (const auto coordinator = weak.lock()) coordinator->tick();
  });
  usage_.start();
  evaluate();
}

void AppCoordinator::startHookReceiver() {
  try {
    hookReceiver_->start();
  } catch (const std::exception& error) {
    logger_.error("Failed to start hook receiver: {}", error.what());
  }
}

void AppCoordinator::stop(std::function<void()> onReleased) {
  isStopped_ = true;
  evalTimer_.reset();
  timeline_.stop(clock_->now());
  usage_.stop();
  hookReceiver_->stop();
  batteryMonitor_->stop();
  thermalMonitor_->stop();
  processMonitor_->stop();
  shortcutController_.stop();
  idleAssertionController_->release();
  deepHold_->release(std::move(onReleased));
}

void AppCoordinator::mergeScan(const std::vector<ProcessMatch>& matches) {
  if (isStopped_) return;
  agentCoordinator_->syncProcessSessions(matches);
  evaluate();
}

void AppCoordinator::tick() {
  const Date now = clock_->now();
  agentCoordinator_->sweepStaleSessions(now);
  agentCoordinator_->removeSessionsStaleFor(kForgetStaleAfterSeconds, now);
  deepHold_->tick(now);
  evaluate();
}

void AppCoordinator::requestEvaluation() {
  requests_->request();
}

void AppCoordinator::evaluate() {
  requests_->answer();
  if (isStopped_) return;
  PolicyEvaluationContext context;
  context.config = settings_.policyConfig();
  agentCoordinator_->setStaleSessionTTL(context.config.staleSessionTTLSeconds);
  context.sessions = agentCoordinator_->sessions();
  context.powerSource = batteryMonitor_->currentSnapshot();
  context.thermalState = thermalMonitor_->currentThermalState();
  context.lastActiveAgentStoppedAt = agentCoordinator_->lastActiveAgentStoppedAt();
  context.pauseUntil = settings_.pauseUntil();
  context.isCurrentlyBatteryBlocked = isBatteryBlocked_;
  context.now = clock_->now();

  const WakeDecision decision = policyEngine_.evaluate(context);
  rememberBatteryBlock(decision, context);
  publishSessions(context.sessions);
  publishFamilies();
  dominantVisualState_.set(aggregateVisualState(activeSessionsList_.get(), decision));
  currentDecision_.set(decision);
  handleDecisionTransition(previousDecision_, decision);
  previousDecision_ = decision;
  timeline_.record(decision, context.now);
  hold_.set(holdStatus(protectionStartedAt_.get(), holdEvidence()));
  renderSurfaces(context);
  evaluated_();
}

void AppCoordinator::rememberBatteryBlock(const WakeDecision& decision,
                                          const PolicyEvaluationContext& context) {
  const auto* blocked = decision.asBlocked();
  const auto resumeLevel = context.config.batteryFloorPercent + context.config.batteryHysteresisPercent;
  if (blocked != nullptr && blocked->block == SafetyBlock::batteryBelowFloor) {
    isBatteryBlocked_ = true;
  } else if (context.powerSource.isOnAC || context.powerSource.batteryPercent.value_or(0) >= resumeLevel) {
    isBatteryBlocked_ = false;
  }
}

void AppCoordinator::publishSessions(const std::shared_ptr<const SessionTable>& sessions) {
  if (sessions == publishedTable_) return;
  publishedTable_ = sessions;
  familiesAreOld_ = true;
  SessionList list;
  list.reserve(sessions->size());
  for (const auto& [id, session] : *sessions) list.push_back(session);
  std::ranges::stable_sort(list, [](const auto& a, const auto& b) { return a->startedAt > b->startedAt; });
  activeSessionsList_.set(std::move(list));
}

void AppCoordinator::publishFamilies() {
  if (!std::exchange(familiesAreOld_, false)) return;
  agentFamilies_.set(
      AgentFamilyPresentation::buildFamilies(activeSessionsList_.get(), usage_.latestBudgetReports().get()));
}

void AppCoordinator::renderSurfaces(const PolicyEvaluationContext& context) {
  const auto& sessions = activeSessionsList_.get();
  KestrelDisplayState state;
  state.visualState = dominantVisualState_.get();
  state.activeWorkingAgentCount =
      std::ranges::count_if(sessions, [](const auto& session) { return session->isWorking(); });
  state.totalActiveSessionsCount = static_cast<std::int64_t>(sessions.size());
  state.decision = currentDecision_.get();
  state.batteryPercent = context.powerSource.batteryPercent;
  state.isCharging = context.powerSource.isCharging;
  state.isOnAC = context.powerSource.isOnAC;
  state.isPaused = context.pauseUntil && *context.pauseUntil > context.now;
  if (state.isPaused) state.pauseRemainingSeconds = *context.pauseUntil - context.now;
  state.lidHoldActive = std::ranges::any_of(hold_.get().by, [](const auto& entry) {
    return entry.kind == HoldKind::lid && entry.state == HoldEvidenceState::held;
  });
  state.elapsedProtectionSeconds = elapsedProtectionSeconds();
  displayState_ = std::move(state);
  for (const auto& surface : surfaces_) surface->render(displayState_);
}

void AppCoordinator::addSurface(std::shared_ptr<StatusSurface> surface) {
  surface->render(displayState_);
  surfaces_.push_back(std::move(surface));
}

void AppCoordinator::toggleMasterSwitch() {
  settings_.setMasterEnabled(!settings_.masterEnabled());
  evaluate();
}

void AppCoordinator::handleDecisionTransition(const WakeDecision& from, const WakeDecision& to) {
  if (const auto* hold = to.asHold()) {
    if (!from.isHolding()) protectionStartedAt_.set(clock_->now());
    idleAssertionController_->acquire(hold->reason, settings_.preventDisplaySleep());
    if (!from.isHolding()) notifications_.notifyProtectionStarted(hold->activeAgentCount);
  } else if (from.isHolding()) {
    protectionStartedAt_.set(std::nullopt);
    idleAssertionController_->release();
    notifyOfTheEnd(to);
  }
  deepHold_->follow(to.asHold() != nullptr && to.asHold()->requiresDeepHold);
}

void AppCoordinator::notifyOfTheEnd(const WakeDecision& decision) {
  const auto* blocked = decision.asBlocked();
  const auto percent = batteryMonitor_->currentSnapshot().batteryPercent;
  if (blocked == nullptr) {
    notifications_.notifyProtectionFinished();
  } else if (blocked->block == SafetyBlock::thermalCritical) {
    notifications_.notifyThermalCutoff();
  } else if (blocked->block == SafetyBlock::batteryBelowFloor && percent) {
    notifications_.notifyBatteryCutoff(*percent);
  }
}

std::vector<HoldEvidence> AppCoordinator::holdEvidence() {
  auto evidence = idleAssertionController_->evidence();
  std::ranges::move(deepHold_->evidence(), std::back_inserter(evidence));
  return evidence;
}

DiagnosticsReport AppCoordinator::diagnosticsReport() const {
  return diagnostics_.generateReport(currentDecision_.get(), batteryMonitor_->currentSnapshot(),
                                     thermalMonitor_->currentThermalState(), activeSessionsList_.get(),
                                     helperStatus().get());
}

std::string AppCoordinator::exportDiagnosticsJSON() const {
  return diagnostics_.exportJSON(diagnosticsReport());
}

double AppCoordinator::elapsedProtectionSeconds() const {
  const auto& start = protectionStartedAt_.get();
  return start ? clock_->now() - *start : 0;
}

RegistrationPtr AppCoordinator::observeEvaluations(std::function<void()> onEvaluated) {
  return evaluated_.subscribe(std::move(onEvaluated));
}

}  // namespace kestrel
