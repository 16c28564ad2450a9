#include <gtest/gtest.h>

#include "KestrelRelay/StateMapping.h"

namespace kestrel {
namespace {

std::string hook(const std::string& event, const std::string& more = "") {
  return R"({"session_id":"s","hook_event_name":")" + event + "\"" + more + "}";
}

std::string notification(const std::string& type) {
  return hook("Notification", R"(,"notification_type":")" + type + "\"");
}

std::string status(const std::string& type) {
  return R"({"type":"session.status","properties":{"sessionID":"o","status":{"type":")" + type + "\"}}}";
}

TEST(StateMappingTest, FollowsTheTurnsOfTheAgents) {
  const std::pair<std::optional<AgentState>, std::vector<std::string>> turns[] = {
      {AgentState::working,
       {hook("UserPromptSubmit"), hook("PreToolUse"), hook("PostToolUse"), hook("PostToolBatch"),
        hook("BeforeAgent"), hook("BeforeTool"), hook("AfterTool"), status("busy")}},
      {AgentState::waiting, {hook("PermissionRequest"), notification("permission_prompt")}},
      {AgentState::idle,
       {hook("SessionStart"), hook("Stop"), hook("StopFailure"), hook("AfterAgent"), hook("Interrupt"),
        notification("idle_prompt"), status("idle"), R"({"type":"session.error"})",
        R"({"type":"agent-turn-complete","thread-id":"t"})"}},
      {AgentState::completed, {hook("SessionEnd")}},
      {std::nullopt,
       {hook("SubagentStop"), hook("PreCompact"), hook("stop"), hook("Notification"),
        notification("auth_success"), R"({"type":"session.status"})", "{}"}},
  };
  for (const auto& [state, payloads] : turns) {
    for (const std::string& payload : payloads) {
      HookPayloadParser parser;
      parser.feed(payload);
      EXPECT_EQ(stateOfHook(parser.payload()), state) << payload;
    }
  }
}

}  // namespace
}  // namespace kestrel
