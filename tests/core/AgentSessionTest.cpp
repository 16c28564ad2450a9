#include <gtest/gtest.h>

#include "KestrelCore/Agents/AgentSession.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

TEST(AgentSessionCoding, ReadsBackWhatItWroteButNoPidThatIsNone) {
  AgentSession session;
  session.id = "proc-cursor-812";
  session.agentType = AgentType::cursor;
  session.pid = 812;
  session.usageMetrics = UsageMetrics{1, 2, 3, 4, 5, 6, 7, 0.5, Date::sinceReferenceDate(1)};
  Json json = encode(session);
  EXPECT_EQ(decodeAgentSession(parseJson(dumpJson(json))), session);
  for (const std::int64_t pid : {4'294'967'297, -2'147'483'649}) {
    json["pid"] = pid;
    EXPECT_EQ(decodeAgentSession(json).pid, std::nullopt) << "another process's";
  }
  json.erase("state");
  EXPECT_THROW(decodeAgentSession(json), DecodingError);
}

}  // namespace
}  // namespace kestrel
