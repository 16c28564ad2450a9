#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

/// How well something that Kestrel stands on works on this machine. `limited` works in part.
enum class CapabilityState { works, limited, unavailable };

template <>
struct RawValues<CapabilityState> {
  static constexpr std::array<std::string_view, 3> table{"works", "limited", "unavailable"};
};

/// One line of the doctor's report.
struct Capability {
  std::string name;
  CapabilityState state = CapabilityState::unavailable;
  /// What was found, in words.
  std::string detail;
  /// What to do about it; empty when nothing is to be done.
  std::string advice;

  friend bool operator==(const Capability&, const Capability&) = default;
};

struct DoctorFindings;

/// One line per capability, in a fixed order.
std::vector<Capability> examine(const DoctorFindings& findings);

Json encode(const std::vector<Capability>& report);

}  // namespace kestrel
