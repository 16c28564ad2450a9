#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "KestrelCore/Agents/AgentState.h"
#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Support/Date.h"

namespace kestrel {

/// Errors of the hook channel. The receiver reports the decoder's own text for a bad record; these are raised
/// by the relay's side, and `payloadTooLarge` also for a socket path that is too long.
class HookEventError : public std::runtime_error {
 public:
  enum class Code { invalidJSON, payloadTooLarge, missingRequiredFields };
  explicit HookEventError(Code code);
  [[nodiscard]] Code code() const { return code_; }

 private:
  Code code_;
};

/// One report from an agent's hook: agent X, session Y, is now in state Z. The wire record of the hook
/// socket.
struct HookEvent {
  /// Version of the record; 1.
  std::int64_t schema = 1;
  AgentType agent = AgentType::custom;
  /// The agent's own session identifier; never empty after decoding.
  std::string sessionId;
  AgentState state = AgentState::unknown;
  /// When the hook fired. Anything a sender claims: it may lie in the future or be absurdly large.
  Date timestamp;
  /// Process of the agent (the relay's nearest ancestor that is no shell).
  std::optional<std::int32_t> pid;
  std::optional<std::string> cwd;
  /// Token counts of the turn, 0 to kMaximumTokenCount.
  std::optional<std::int64_t> inputTokens;
  std::optional<std::int64_t> outputTokens;
  std::optional<std::int64_t> cachedTokens;
  std::optional<std::int64_t> reasoningTokens;
  /// Model identifier as the agent names it.
  std::optional<std::string> model;
  std::optional<std::string> turnId;

  /// Token counts from outside beyond 0…10^12 count as absent: no real turn comes near, and sums cannot
  /// overflow.
  static constexpr std::int64_t kMaximumTokenCount = 1'000'000'000'000;

  /// The identity of a session whose agent gave none: "claude-4711", or "claude-default" without a pid.
  static std::string defaultSessionId(AgentType agent, std::optional<std::int32_t> pid);

  /// Decodes one record. Only `agent` and `state` are required, unknown names of either map to `custom` and
  /// `unknown`, and every other field of the wrong type counts as absent. `now` stands in for a missing or
  /// malformed timestamp. Throws DecodingError.
  static HookEvent parse(std::string_view jsonData, Date now);

  /// The record as one compact JSON object; absent optionals are left out.
  [[nodiscard]] std::string toJSONData() const;

  friend bool operator==(const HookEvent&, const HookEvent&) = default;
};

}  // namespace kestrel
