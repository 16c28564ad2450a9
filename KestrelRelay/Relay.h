#pragma once

#include <string>

#include "KestrelRelay/RelayOptions.h"

namespace kestrel {

/// Exit statuses with `--strict`; without it the status is always `kRelayDone`.
inline constexpr int kRelayDone = 0;
inline constexpr int kRelayNotDelivered = 1;
inline constexpr int kRelayUsage = 2;

/// Understands the hook, tells Kestrel, and returns empty text, or one line that says why Kestrel was not
/// told. An event that says nothing about its session is not sent and is no failure. Takes at most 180 ms.
[[nodiscard]] std::string relayHook(const RelayOptions& options);

}  // namespace kestrel
