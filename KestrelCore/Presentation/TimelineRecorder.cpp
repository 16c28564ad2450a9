#include "KestrelCore/Presentation/TimelineRecorder.h"

#include <string_view>
#include <system_error>
#include <utility>

#include "KestrelCore/Presentation/StatusLine.h"
#include "KestrelCore/Support/DecodingError.h"

namespace kestrel {
namespace {

/// Far more than the most spans need.
constexpr std::size_t kMaximumFileBytes = 4 * 1024 * 1024;

TimelineKind kindOf(const WakeDecision& decision) {
  if (decision.isHolding()) return TimelineKind::held;
  return decision.isBlocked() ? TimelineKind::blocked : TimelineKind::released;
}

std::string reasonOf(const WakeDecision& decision) {
  if (const auto* hold = decision.asHold()) return withoutCountdown(hold->reason);
  if (const auto* blocked = decision.asBlocked()) return std::string(rawValue(blocked->block));
  return withoutCountdown(decision.asRelease()->reason);
}

}  // namespace

TimelineRecorder::TimelineRecorder(std::filesystem::path file, std::shared_ptr<const AtomicFileWriter> files,
                                   Logger logger)
    : file_(std::move(file)), files_(std::move(files)), logger_(std::move(logger)) {}

void TimelineRecorder::load(Date now) {
  isLoaded_ = true;
  timeline_ = Timeline();
  std::error_code ignored;
  if (!std::filesystem::exists(file_, ignored)) return;
  const auto text = readWholeFile(file_, kMaximumFileBytes);
  if (!text) {
    logger_.error("Cannot read {}: it is not readable, no plain file, or too large; it begins anew",
                  file_.native());
    return;
  }
  try {
    timeline_ = Timeline::fromJson(*text, now);
  } catch (const DecodingError& error) {
    logger_.error("Cannot understand {}: {}; it begins anew", file_.native(), error.what());
  }
}

void TimelineRecorder::record(const WakeDecision& decision, Date now) {
  if (timeline_.record(kindOf(decision), reasonOf(decision), now)) isUnsaved_ = true;
  const bool isDue =
      !triedToSaveAt_ || now < *triedToSaveAt_ || now - *triedToSaveAt_ >= kSecondsBetweenWrites;
  if (isLoaded_ && isUnsaved_ && isDue) save(now);
}

void TimelineRecorder::stop(Date now) {
  if (!std::exchange(isLoaded_, false) || timeline_.spans().empty()) return;
  save(now);
}

void TimelineRecorder::save(Date now) {
  triedToSaveAt_ = now;
  // Of no worth after a crash of the whole machine, so nobody waits for the disk.
  isUnsaved_ = !files_->write(file_, timeline_.toJson(), Durability::process);
}

}  // namespace kestrel
