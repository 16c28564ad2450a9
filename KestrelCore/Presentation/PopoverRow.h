#pragma once

#include <optional>
#include <string>

#include "KestrelCore/Presentation/AgentFamilyPresentation.h"
#include "KestrelCore/Presentation/Tone.h"

namespace kestrel {

/// One agent family in a short list.
struct PopoverRow {
  /// The agent's raw value.
  std::string id;
  AgentType agent = AgentType::custom;
  AgentState state = AgentState::idle;
  std::string name;
  std::string subtitle;
  /// What runs out first, context or quota, as a fraction of 0 to 1; absent when neither is known.
  std::optional<double> left;
  Tone tone = Tone::accent;
  /// "78 % ctx", "34 % q"; empty without a gauge.
  std::string leftText;
  /// What else the report says, or why there is none.
  std::string budgetLine;
  /// The alert's word; empty without one.
  std::string alert;
  Tone alertTone = Tone::warn;
  /// Everything, in several lines.
  std::string details;

  friend bool operator==(const PopoverRow&, const PopoverRow&) = default;
};

/// A quota that was filled again since it was measured counts as unknown.
PopoverRow popoverRow(const AgentFamilyPresentation& family, Date now);

}  // namespace kestrel
