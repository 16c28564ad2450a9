#include "KestrelApp/ApplicationRuntime.h"

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <utility>

#include "KestrelCore/Control/ControlProtocol.h"
#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {
namespace {

/// How long the running instance may take to answer.
constexpr double kShowTimeoutSeconds = 2;
/// How long the end may wait for the helper to be told.
constexpr double kReleaseTimeoutSeconds = 1.5;
/// How long an instance that makes room may take: its release, and its account of usage.
constexpr double kFollowTimeoutSeconds = 2.5;
constexpr double kFollowIntervalSeconds = 0.05;

enum class Shown { window, nothing, noAnswer };

/// What the running instance answers to a command; null when it does not.
std::shared_ptr<const Json> ask(const std::string& controlSocket, const char* command) {
  const auto exchange = exchangeOverSocket(controlSocket, encodeControlRequest({command, {}}),
                                           kShowTimeoutSeconds, ControlReply::kMaximumBytes);
  if (exchange.outcome != SocketExchange::Outcome::replied) return nullptr;
  try {
    return decodeControlReply(exchange.reply).result;
  } catch (const DecodingError&) {
    return nullptr;
  }
}

Shown askToShow(const std::string& controlSocket) {
  const auto answer = ask(controlSocket, "show");
  if (!answer) return Shown::noAnswer;
  const auto shown = answer->find("shown");
  return shown != answer->end() && *shown == true ? Shown::window : Shown::nothing;
}

/// The report that would make one entry of the status what it is, as of now; absent for what is found by
/// process, and found again.
std::optional<HookEvent> reportOf(const Json& session, Date now) {
  try {
    if (requiredString(session, "integrationType") == rawValue(IntegrationType::process)) return std::nullopt;
    Json report = {{"agent", requiredString(session, "agentType")},
                   {"session_id", requiredString(session, "id")},
                   {"state", requiredString(session, "state")}};
    for (const char* optional : {"pid", "cwd"}) {
      if (const auto value = session.find(optional); value != session.end()) report[optional] = *value;
    }
    HookEvent event = HookEvent::parse(dumpJson(report), now);
    return event.state == AgentState::stale ? std::nullopt : std::optional(std::move(event));
  } catch (const DecodingError&) {
    return std::nullopt;
  }
}

std::vector<HookEvent> askForSessions(const std::string& controlSocket, Date now) {
  std::vector<HookEvent> reports;
  const auto answer = ask(controlSocket, "sessions");
  const auto list = answer ? answer->find("sessions") : Json::const_iterator();
  if (!answer || list == answer->end() || !list->is_array()) return reports;
  for (const Json& each : *list) {
    if (auto report = reportOf(each, now)) reports.push_back(*std::move(report));
  }
  return reports;
}

}  // namespace

SoleInstance::SoleInstance(Directories directories, std::shared_ptr<const Clock> clock,
                           std::shared_ptr<LogSink> logSink)
    : directories_(std::move(directories)),
      clock_(std::move(clock)),
      logSink_(std::move(logSink)),
      writePolicy_(std::make_shared<KestrelWritePolicy>(directories_, logSink_)),
      files_(std::make_shared<AtomicFileWriter>(writePolicy_, Logger(logSink_, "files"))) {}

std::optional<int> SoleInstance::claim(Manners manners) {
  const auto outcome = lock_.acquire(directories_.lockFile(), *files_);
  if (outcome == InstanceLock::Outcome::acquired) return std::nullopt;
  if (outcome == InstanceLock::Outcome::failed) {
    std::fprintf(stderr, "Kestrel cannot start: its lock file %s cannot be used.\n",
                 directories_.lockFile().c_str());
    return 1;
  }
  // Before it may make room.
  if (manners == Manners::mayFollow) sessions_ = askForSessions(directories_.controlSocket(), clock_->now());
  const Shown shown = askToShow(directories_.controlSocket());
  if (shown == Shown::nothing && manners == Manners::mayFollow && follow()) return std::nullopt;
  std::puts(shown == Shown::noAnswer ? "Kestrel is already running, but does not answer."
                                     : "Kestrel is already running.");
  return 0;
}

bool SoleInstance::follow() {
  for (double waited = 0; waited < kFollowTimeoutSeconds; waited += kFollowIntervalSeconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(kFollowIntervalSeconds));
    if (lock_.acquire(directories_.lockFile(), *files_) == InstanceLock::Outcome::acquired) return true;
  }
  return false;
}

ApplicationRuntime::ApplicationRuntime(const SoleInstance& instance, MainLoop& loop,
                                       std::function<bool()> onShow)
    : instance_(instance),
      loop_(loop),
      signals_(loop.executor(), [this] { end(); }),
      platform_(makePlatform(
          {loop.executor(), instance.logSink(), instance.clock(), instance.files(), instance.directories()})),
      settings_(*platform_.userDefaults, instance.clock()),
      usage_(usersOwnUsage(loop.executor(), instance.directories(), instance.files(), instance.clock(),
                           instance.logSink())),
      coordinator_(
          AppCoordinator::create({platform_, loop.executor(), settings_, instance.clock(), instance.logSink(),
                                  instance.writePolicy(), instance.directories(), usage_})),
      service_(*coordinator_, std::move(onShow)),
      server_(loop.executor(), instance.directories().controlSocket(), platform_.peerIdentity,
              instance.writePolicy(), instance.logSink(), service_) {}

void ApplicationRuntime::start() {
  (void)server_.start();
  isStarted_ = true;
  for (const HookEvent& session : instance_.sessions())
    coordinator_->agentCoordinator().didReceiveHookEvent(session);
  coordinator_->start();
}

void ApplicationRuntime::end() {
  if (!isStarted_ || isEnding_.exchange(true)) return loop_.stop();
  deadline_ = loop_.executor().after(kReleaseTimeoutSeconds, [this] { loop_.stop(); });
  coordinator_->stop([this] { loop_.stop(); });
}

}  // namespace kestrel
