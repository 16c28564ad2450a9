#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "KestrelCore/Agents/HookEvent.h"
#include "KestrelRelay/HookPayload.h"
#include "KestrelRelay/RelayOptions.h"

namespace kestrel {

/// The receiver takes a record with one single read; below this size it has always arrived whole.
inline constexpr std::size_t kMaximumRecordSize = 16 * 1024;

/// What the system tells about the process that runs the hook.
struct HookSurroundings {
  std::optional<std::int32_t> pid;
  std::optional<std::string> cwd;
  Date now;
};

/// Puts the event together: what the command line says wins over the payload, which wins over the
/// surroundings. Over-long texts are left out.
HookEvent makeHookEvent(const RelayOptions& options, const HookPayload& payload, AgentState state,
                        const HookSurroundings& surroundings);

/// The record for the wire, shorter than kMaximumRecordSize: where escapes blow it up it goes without
/// directory.
std::string encodeRecord(HookEvent event);

}  // namespace kestrel
