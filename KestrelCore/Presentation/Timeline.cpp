#include "KestrelCore/Presentation/Timeline.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

double length(const TimelineSpan& span) {
  return span.end - span.begin;
}

TimelineSpan decodeSpan(const Json& object) {
  if (!object.is_object()) throw DecodingError("A span is not an object");
  return {requiredRawValue<TimelineKind>(object, "kind"), requiredString(object, "reason"),
          requiredDate(object, "begin"), requiredDate(object, "end")};
}

}  // namespace

bool Timeline::record(TimelineKind kind, std::string_view reason, Date now) {
  forget(now);
  if (!spans_.empty() && now - spans_.back().end <= kMaximumSilence) {
    TimelineSpan& last = spans_.back();
    last.end = now;
    if (last.kind == kind && last.reason == reason) return false;
  }
  spans_.push_back({kind, std::string(reason), now, now});
  makeRoom();
  ++revision_;
  return true;
}

void Timeline::forget(Date now) {
  const std::size_t before = spans_.size();
  while (!spans_.empty() && spans_.back().begin > now) spans_.pop_back();
  if (!spans_.empty()) spans_.back().end = std::min(spans_.back().end, now);
  const auto kept =
      std::ranges::find_if(spans_, [&](const TimelineSpan& span) { return now - span.end < kKeptSeconds; });
  spans_.erase(spans_.begin(), kept);
  if (spans_.size() != before) ++revision_;
}

/// Makes one span of two neighbours of a kind, so that the sums stay true; without any, the oldest goes.
void Timeline::makeRoom() {
  if (spans_.size() <= kMaximumSpans) return;
  std::optional<std::size_t> best;
  // The last one's reason is still compared.
  for (std::size_t i = 0; i + 2 < spans_.size(); ++i) {
    const bool joins = spans_[i].kind == spans_[i + 1].kind && spans_[i].end == spans_[i + 1].begin;
    if (!joins) continue;
    const auto both = [&](std::size_t first) { return spans_[first + 1].end - spans_[first].begin; };
    if (!best || both(i) < both(*best)) best = i;
  }
  if (best) {
    TimelineSpan& first = spans_[*best];
    TimelineSpan& second = spans_[*best + 1];
    if (length(second) > length(first)) first.reason = std::move(second.reason);
    first.end = second.end;
  }
  spans_.erase(spans_.begin() + static_cast<std::ptrdiff_t>(best ? *best + 1 : 0));
}

std::vector<TimelineSpan> Timeline::between(Date from, Date to) const {
  std::vector<TimelineSpan> all;
  if (!(from < to)) return all;
  Date at = from;
  for (const TimelineSpan& span : spans_) {
    const Date begin = std::max(span.begin, at);
    // Between two recordings the last one goes on.
    const bool goesOn = &span == &spans_.back() && to - span.end <= kMaximumSilence;
    const Date end = goesOn ? to : std::min(span.end, to);
    if (!(begin < end)) continue;
    if (at < begin) all.push_back({TimelineKind::unknown, "", at, begin});
    all.push_back({span.kind, span.reason, begin, end});
    at = end;
  }
  if (at < to) all.push_back({TimelineKind::unknown, "", at, to});
  return all;
}

double Timeline::seconds(TimelineKind kind, Date from, Date to) const {
  double sum = 0;
  for (const TimelineSpan& span : spans_) {
    if (span.kind == kind) sum += std::max(std::min(span.end, to) - std::max(span.begin, from), 0.0);
  }
  return sum;
}

std::string Timeline::toJson() const {
  Json spans = Json::array();
  for (const TimelineSpan& span : spans_) {
    spans.push_back({{"kind", rawValue(span.kind)},
                     {"reason", span.reason},
                     {"begin", span.begin.secondsSinceReferenceDate()},
                     {"end", span.end.secondsSinceReferenceDate()}});
  }
  return dumpJson({{"version", 1}, {"spans", std::move(spans)}});
}

Timeline Timeline::fromJson(std::string_view text, Date now) {
  const Json object = parseJsonObject(text);
  const auto spans = object.find("spans");
  if (spans == object.end() || !spans->is_array()) throw DecodingError("There is no list of spans");
  Timeline timeline;
  for (const Json& encoded : *spans) {
    TimelineSpan span = decodeSpan(encoded);
    const bool isInOrder = timeline.spans_.empty() || span.begin >= timeline.spans_.back().end;
    const bool isPast = span.begin < span.end && span.end <= now && now - span.end < kKeptSeconds;
    if (span.kind == TimelineKind::unknown || !isInOrder || !isPast) continue;
    timeline.spans_.push_back(std::move(span));
    timeline.makeRoom();
  }
  return timeline;
}

}  // namespace kestrel
