#pragma once

#include <array>
#include <string_view>

#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

/// The channels by which a session is learnt of.
enum class IntegrationType { lifecycleHook, plugin, process, fallback };

template <>
struct RawValues<IntegrationType> {
  static constexpr std::array<std::string_view, 4> table{"lifecycle", "plugin", "process", "fallback"};
};

std::string_view displayName(IntegrationType type);

}  // namespace kestrel
