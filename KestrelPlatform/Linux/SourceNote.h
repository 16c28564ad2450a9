#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// Says in the log where a reading comes from, when that changed and has lasted for a moment: services need
/// one to answer after the start. Main thread.
class SourceNote {
 public:
  /// "SUBJECT comes from ...", or `whenAbsent`.
  SourceNote(Executor& executor, Logger logger, std::string_view subject, std::string_view whenAbsent)
      : executor_(executor), logger_(std::move(logger)), subject_(subject), whenAbsent_(whenAbsent) {}

  void set(const std::optional<std::string>& source) {
    std::string line = source ? subject_ + " comes from " + *source : whenAbsent_;
    if (line == (timer_ ? pending_ : said_)) return;
    pending_ = std::move(line);
    timer_ = executor_.after(kSettleSeconds, [this] { say(); });
  }

 private:
  static constexpr double kSettleSeconds = 1;

  void say() {
    timer_.reset();
    if (said_ == pending_) return;
    said_ = pending_;
    logger_.info("{}", said_);
  }

  Executor& executor_;
  const Logger logger_;
  const std::string subject_;
  const std::string whenAbsent_;
  std::string pending_;
  std::string said_;
  RegistrationPtr timer_;
};

}  // namespace kestrel
