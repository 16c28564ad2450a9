#include "KestrelCore/Presentation/StatusLine.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrel {
namespace {

/// Texts in order, each once.
class TextList {
 public:
  void add(std::string text) {
    if (text.empty() || std::ranges::find(texts_, text) != texts_.end()) return;
    texts_.push_back(std::move(text));
  }
  [[nodiscard]] std::string joined(std::string_view separator) const {
    std::string result;
    for (const auto& text : texts_) {
      if (!result.empty()) result += separator;
      result += text;
    }
    return result;
  }

 private:
  std::vector<std::string> texts_;
};

std::string servicesInForce(const HoldStatus& hold) {
  TextList services;
  for (const auto& entry : hold.by) {
    const bool protects = entry.kind == HoldKind::idle || entry.kind == HoldKind::desktop;
    if (protects && entry.state == HoldEvidenceState::held) services.add(entry.service);
  }
  return services.joined(", ");
}

std::string obstacle(const HoldEvidence& entry) {
  switch (entry.state) {
    case HoldEvidenceState::held:
      return {};
    case HoldEvidenceState::pending:
      return "asking the " + entry.service + (entry.detail.empty() ? "" : " (" + entry.detail + ")");
    case HoldEvidenceState::refused:
      return "refused by the " + entry.service + (entry.detail.empty() ? "" : " (" + entry.detail + ")");
    case HoldEvidenceState::unavailable:
    case HoldEvidenceState::lost:
      return entry.detail.empty() ? entry.service + " is " + std::string(rawValue(entry.state))
                                  : entry.detail;
  }
  return {};
}

std::string withObstacles(const std::string& text, const HoldStatus& hold) {
  TextList obstacles;
  for (const auto& entry : hold.by) {
    // A lid that is open needs no hold of its own.
    if (entry.kind != HoldKind::lid) obstacles.add(obstacle(entry));
  }
  const std::string why = obstacles.joined("; ");
  return why.empty() ? text : text + ": " + why;
}

}  // namespace

std::string withoutCountdown(std::string text) {
  for (std::size_t open = text.find(" ("); open != std::string::npos; open = text.find(" (", open + 1)) {
    const std::size_t end = text.find_first_not_of("0123456789", open + 2);
    if (end == open + 2 || text.compare(std::min(end, text.size()), 2, "s)") != 0) continue;
    return text.erase(open, end + 2 - open);
  }
  return text;
}

std::string describeHold(const HoldStatus& hold) {
  switch (hold.state) {
    case HoldState::none:
      return {};
    case HoldState::wanted:
      return withObstacles("wanted", hold);
    case HoldState::inForce:
      return "in force (" + servicesInForce(hold) + ")";
    case HoldState::lost:
      return withObstacles("lost, taking it again", hold);
  }
  return {};
}

StatusLine statusLine(const WakeDecision& decision, const HoldStatus& hold) {
  const std::string description = decision.statusDescription();
  const std::string inWords = describeHold(hold);
  const std::string suffix = inWords.empty() ? "" : " · " + inWords;
  return {description + suffix, withoutCountdown(description) + suffix};
}

}  // namespace kestrel
