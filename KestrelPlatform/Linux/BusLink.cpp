#include "KestrelPlatform/Linux/BusLink.h"

#include <algorithm>
#include <cerrno>

#include "KestrelPlatform/Linux/BusText.h"

namespace kestrel {
namespace {

constexpr double kFirstRetrySeconds = 1;
constexpr double kLongestRetrySeconds = 30;
constexpr double kReadyWithinSeconds = 5;

}  // namespace

BusLink::BusLink(SdBus::Which which, Executor& executor, Logger logger)
    : which_(which), executor_(executor), logger_(std::move(logger)), retryDelay_(kFirstRetrySeconds) {
  open();
}

void BusLink::open() {
  int error = 0;
  bus_ = SdBus::open(
      which_, executor_, [this](const std::string& reason) { lose(reason, true); }, error);
  if (!bus_) {
    // No address at all: the environment of a process does not change.
    if (error == -ENOMEDIUM) return lose("none in this environment", false);
    return lose(busErrorText(error), true);
  }
  timer_ = executor_.after(kReadyWithinSeconds, [this] { checkReady(); });
  changed_();
}

void BusLink::checkReady() {
  if (!bus_->isReady()) return lose("no answer", true);
  retryDelay_ = kFirstRetrySeconds;
  if (!problem_.empty())
    logger_.info("The {} bus is back", which_ == SdBus::Which::system ? "system" : "session");
  problem_.clear();
}

void BusLink::lose(const std::string& reason, bool retry) {
  bus_.reset();
  std::string problem =
      std::string(which_ == SdBus::Which::system ? "no system bus: " : "no session bus: ") + reason;
  if (problem != problem_) logger_.info("{}", problem);
  problem_ = std::move(problem);
  timer_ = retry ? executor_.after(retryDelay_, [this] { open(); }) : nullptr;
  retryDelay_ = std::min(2 * retryDelay_, kLongestRetrySeconds);
  changed_();
}

}  // namespace kestrel
