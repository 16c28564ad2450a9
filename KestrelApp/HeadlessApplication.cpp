#include "KestrelApp/HeadlessApplication.h"

#include <cstdio>
#include <unistd.h>
#include <utility>

#include "KestrelApp/ApplicationRuntime.h"
#include "KestrelApp/CommandLine.h"
#include "KestrelApp/SessionHandover.h"
#include "KestrelApp/TerminalLogSink.h"
#include "KestrelCore/Control/StatusReport.h"
#include "KestrelCore/Support/RepeatLimitingLogSink.h"

namespace kestrel {
namespace {

std::shared_ptr<LogSink> makeHeadlessLog(std::shared_ptr<const Clock> clock,
                                         std::shared_ptr<HeadlessStatusLine> statusLine) {
  auto sink = makeLogSink(true);
  if (statusLine->isTerminal() && ::isatty(STDERR_FILENO) == 1) {
    sink = std::make_shared<TerminalLogSink>(std::move(sink), std::move(statusLine));
  }
  return std::make_shared<RepeatLimitingLogSink>(std::move(sink), std::move(clock));
}

}  // namespace

HeadlessApplication::HeadlessApplication(Directories directories, std::string ownPath)
    : ownPath_(std::move(ownPath)),
      clock_(std::make_shared<SystemClock>()),
      statusLine_(std::make_shared<HeadlessStatusLine>(STDOUT_FILENO)),
      instance_(std::make_unique<SoleInstance>(std::move(directories), clock_,
                                               makeHeadlessLog(clock_, statusLine_))) {}

HeadlessApplication::~HeadlessApplication() = default;

void HeadlessApplication::standIn(UniqueDescriptor sessions) {
  standsIn_ = true;
  instance_->setSessions(takeOverSessions(std::move(sessions), clock_->now()));
}

int HeadlessApplication::run() {
  if (const auto status = instance_->claim(SoleInstance::Manners::defer)) return *status;
  printHints();
  const auto loop = makeMainLoop();
  ApplicationRuntime* running = nullptr;
  ApplicationRuntime runtime(*instance_, *loop, [&] {
    // After the answer, which tells that there is no window.
    if (standsIn_) loop->executor().post([&] { running->end(); });
    return false;
  });
  running = &runtime;
  AppCoordinator& coordinator = runtime.coordinator();
  const auto surface = coordinator.observeEvaluations(
      [&] { statusLine_->show(statusLine(coordinator.currentDecision().get(), coordinator.hold().get())); });
  runtime.start();
  loop->run();
  return 0;
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
