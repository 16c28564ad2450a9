#include <gmock/gmock.h>
#include <string>

#include "KestrelCore/Agents/HookEvent.h"
#include "KestrelCore/Support/DecodingError.h"

namespace kestrel {
namespace {

constexpr Date kNow = Date::since1970(1'800'000'000);

const std::string kFullRecord =
    R"({"agent":"codex","cached_tokens":3,"cwd":"/home/u/p","input_tokens":1,"model":"m-1","output_tokens":2,)"
    R"("pid":4711,"reasoning_tokens":1000000000000,"schema":2,"session_id":"abc","state":"waiting",)"
    R"("timestamp":1700000000.5,"turn_id":"t"})";

/// What a record decodes to, as the record that it would be sent on as.
std::string decoded(std::string_view record) {
  return HookEvent::parse(record, kNow).toJSONData();
}

/// The failure's text; empty when the record is accepted.
std::string failureOf(std::string_view record) {
  try {
    (void)HookEvent::parse(record, kNow);
    return "";
  } catch (const DecodingError& error) {
    return error.what();
  }
}

TEST(HookEvent, DecodesLeniently) {
  const auto plain = [](const std::string& agent, const std::string& id, const std::string& state) {
    return R"({"agent":")" + agent + R"(","schema":1,"session_id":")" + id + R"(","state":")" + state +
           R"(","timestamp":1800000000.0})";
  };
  const struct {
    std::string record;
    std::string expected;
  } rows[] = {
      {kFullRecord, kFullRecord},
      {R"({"agent":"Claude","state":"WORKING"})", plain("claude", "claude-default", "working")},
      {R"({"agent":"","state":"","session_id":""})", plain("custom", "custom-default", "unknown")},
      {R"({"agent":"aider","state":"stale","pid":"12"})", plain("aider", "aider-default", "stale")},
      {R"({"agent":"aider","state":"error","pid":2147483648})", plain("aider", "aider-default", "error")},
      {R"({"agent":"codex","state":"idle","session_id":7,"timestamp":"yesterday","schema":"x"})",
       plain("codex", "codex-default", "idle")},
      {R"({"agent":"codex","state":"idle","session_id":"ü\u0000\"","timestamp":true})",
       plain("codex", R"(ü\u0000\")", "idle")},
      // Counts that no turn can have.
      {R"({"agent":"codex","state":"idle","input_tokens":-1,"output_tokens":1000000000001,)"
       R"("cached_tokens":1e300,"reasoning_tokens":18446744073709551615})",
       plain("codex", "codex-default", "idle")},
      {R"({"agent":"foo","state":"bar","pid":12,"timestamp":-1e300})",
       R"({"agent":"custom","pid":12,"schema":1,"session_id":"custom-12","state":"unknown","timestamp":-1e+300})"},
  };
  for (const auto& row : rows) EXPECT_EQ(decoded(row.record), row.expected) << row.record;
}

TEST(HookEvent, FailuresNameTheKeyAndFitIntoAJsonString) {
  const struct {
    std::string record;
    const char* expected;
  } rows[] = {
      {"{}", "Missing required key 'agent'"},
      {R"({"agent":7,"state":"idle"})", "The value for key 'agent' is not a string"},
      {R"({"agent":"codex","state":null})", "The value for key 'state' is not a string"},
      {"[]", "The JSON data is not an object"},
      {"\n\"}\\\r", "The data is not valid JSON"},
      {std::string(R"({"agent":"codex","state":"idle"})") + '\0', "The data is not valid JSON"},
      {"{\"agent\":\"\xff\",\"state\":\"idle\"}", "The data is not valid JSON"},
      {R"({"agent":"codex","state":"idle","timestamp":1e999})", "out of range"},
      {R"({"agent":"codex","state":"idle","x":)" + std::string(100, '['), "nested too deeply"},
  };
  for (const auto& row : rows) {
    const std::string failure = failureOf(row.record);
    EXPECT_THAT(failure, testing::HasSubstr(row.expected)) << row.record;
    for (const char c : failure) EXPECT_TRUE(c >= ' ' && c != '"' && c != '\\') << failure;
  }
}

TEST(HookEvent, ARecordDamagedAnywhereIsRefusedOrDecodedButNeverWorse) {
  for (std::size_t i = 0; i < kFullRecord.size(); ++i) {
    for (const char damage : {'\0', '"', '{', '9', '-', 'e', '\x80'}) {
      std::string record = kFullRecord;
      record[i] = damage;
      const bool decodes = failureOf(record).empty();
      EXPECT_FALSE(decodes && HookEvent::parse(record, kNow).sessionId.empty()) << record;
    }
  }
}

}  // namespace
}  // namespace kestrel
