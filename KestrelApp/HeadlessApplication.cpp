#include "KestrelApp/HeadlessApplication.h"

#include <cstdio>
#include <unistd.h>
#include <utility>

#include "KestrelApp/CommandLine.h"
#include "KestrelApp/TerminalLogSink.h"
#include "KestrelCore/Control/ControlProtocol.h"
#include "KestrelCore/Control/StatusReport.h"
#include "KestrelCore/Support/RepeatLimitingLogSink.h"
#include "KestrelCore/Support/UnixSocket.h"
#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {
namespace {

/// How long the running instance may take to answer.
constexpr double kShowTimeoutSeconds = 2;
/// How long the end may wait for the helper to be told.
constexpr double kReleaseTimeoutSeconds = 1.5;

std::shared_ptr<LogSink> makeApplicationLog(std::shared_ptr<const Clock> clock,
                                            std::shared_ptr<HeadlessStatusLine> statusLine) {
  auto sink = makeLogSink(true);
  if (statusLine->isTerminal() && ::isatty(STDERR_FILENO) == 1) {
    sink = std::make_shared<TerminalLogSink>(std::move(sink), std::move(statusLine));
  }
  return std::make_shared<RepeatLimitingLogSink>(std::move(sink), std::move(clock));
}

}  // namespace

HeadlessApplication::HeadlessApplication(Directories directories, std::string ownPath)
    : directories_(std::move(directories)),
      ownPath_(std::move(ownPath)),
      clock_(std::make_shared<SystemClock>()),
      statusLine_(std::make_shared<HeadlessStatusLine>(STDOUT_FILENO)),
      logSink_(makeApplicationLog(clock_, statusLine_)),
      writePolicy_(std::make_shared<KestrelWritePolicy>(directories_, logSink_)),
      files_(std::make_shared<AtomicFileWriter>(writePolicy_, Logger(logSink_, "files"))),
      loop_(makeMainLoop()),
      signals_(loop_->executor(), [this] { end(); }) {}

HeadlessApplication::~HeadlessApplication() = default;

int HeadlessApplication::run() {
  switch (lock_.acquire(directories_.lockFile(), *files_)) {
    case InstanceLock::Outcome::acquired:
      return runAsOnlyInstance();
    case InstanceLock::Outcome::heldByAnother:
      return deferToRunningInstance();
    case InstanceLock::Outcome::failed:
      break;
  }
  std::fprintf(stderr, "Kestrel cannot start: its lock file %s cannot be used.\n",
               directories_.lockFile().c_str());
  return 1;
}

int HeadlessApplication::deferToRunningInstance() {
  const auto exchange = exchangeOverSocket(directories_.controlSocket(), encodeControlRequest({"show", {}}),
                                           kShowTimeoutSeconds, ControlReply::kMaximumBytes);
  const bool answers = exchange.outcome == SocketExchange::Outcome::replied;
  std::puts(answers ? "Kestrel is already running." : "Kestrel is already running, but does not answer.");
  return 0;
}

int HeadlessApplication::runAsOnlyInstance() {
  printHints();
  Executor& executor = loop_->executor();
  Platform platform = makePlatform({executor, logSink_, clock_, files_, directories_});
  SettingsStore settings(*platform.userDefaults, clock_);
  UsageCoordinator usage(usersOwnUsage(executor, directories_, files_, clock_, logSink_));
  const auto coordinator = AppCoordinator::create(
      {platform, executor, settings, clock_, logSink_, writePolicy_, directories_, usage});
  ControlService service(*coordinator, [] { return false; });
  ControlServer server(executor, directories_.controlSocket(), platform.peerIdentity, writePolicy_, logSink_,
                       service);
  (void)server.start();
  const auto surface = coordinator->observeEvaluations([&] {
    statusLine_->show(statusLine(coordinator->currentDecision().get(), coordinator->hold().get()));
  });
  coordinator->start();
  coordinator_ = coordinator.get();
  loop_->run();
  return 0;
}

void HeadlessApplication::end() {
  AppCoordinator* const running = std::exchange(coordinator_, nullptr);
  if (running == nullptr) return loop_->stop();  // Not yet started, or asked again.
  deadline_ = loop_->executor().after(kReleaseTimeoutSeconds, [this] { loop_->stop(); });
  running->stop([this] { loop_->stop(); });
}

void HeadlessApplication::printHints() const {
  std::printf(
      "Kestrel %s is running. To send it a first event by hand:\n  %s --agent claude --state working\n"
      "To ask what it does:\n  %s status\n",
      kKestrelVersion, siblingCommand(ownPath_, "kestrel-relay").c_str(),
      siblingCommand(ownPath_, "kestrelctl").c_str());
  std::fflush(stdout);
}

}  // namespace kestrel
