#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "KestrelRelay/JsonStringScanner.h"

namespace kestrel {

/// What an agent's hook tells of itself, as far as the relay has a use for it. Nothing here is empty text.
struct HookPayload {
  std::optional<std::string> sessionId;
  std::optional<std::string> cwd;
  std::optional<std::string> model;
  std::optional<std::string> turnId;
  /// "PreToolUse", "agent-turn-complete", "session.status", …
  std::optional<std::string> event;
  /// What a notification is about: "permission_prompt", "idle_prompt", …
  std::optional<std::string> notification;
  /// The status that a "session.status" event reports: "busy", "idle".
  std::optional<std::string> status;
};

/// Reads a hook's JSON as it arrives, in any number of pieces.
class HookPayloadParser {
 public:
  HookPayloadParser();

  void feed(std::string_view bytes) { scanner_.feed(bytes); }
  /// The JSON has come to its end: nothing that follows can change the payload.
  [[nodiscard]] bool isComplete() const { return scanner_.isComplete(); }
  /// What has been understood so far.
  [[nodiscard]] HookPayload payload() const;

 private:
  JsonStringScanner scanner_;
};

}  // namespace kestrel
