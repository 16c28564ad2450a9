#include <gtest/gtest.h>

#include "KestrelRelay/HookPayload.h"

namespace kestrel {
namespace {

using Text = std::optional<std::string>;

HookPayload parsed(std::string_view json, std::size_t pieceSize) {
  HookPayloadParser parser;
  for (std::size_t i = 0; i < json.size(); i += pieceSize) parser.feed(json.substr(i, pieceSize));
  return parser.payload();
}

std::string huge(char c) {
  return std::string(300'000, c);
}

const std::string kMembers = R"("session_id":"s","cwd":"/d")";

struct Case {
  std::string json;
  Text sessionId, cwd;
};

const Case kCases[] = {
    // What agents hand over.
    {R"({"session_id":"c-1","transcript_path":"/home/u/.t/c-1.jsonl","cwd":"/home/u/p","hook_event_name":"Stop"})",
     "c-1", "/home/u/p"},
    {R"({"type":"agent-turn-complete","thread-id":"t-1","turn-id":"7","cwd":"/home/u/q","input-messages":["a"]})",
     "t-1", "/home/u/q"},
    {"\xEF\xBB\xBF \r\n{\"cwd\" : \"/home/u/p\" ,\n \"session_id\" : \"g-1\"}\n", "g-1", "/home/u/p"},
    {R"({"type":"session.status","properties":{"sessionID":"o-1","status":{"type":"busy"}}})", "o-1", {}},
    {R"({"thread-id":"second","session_id":"first"})", "first", {}},
    {R"({"session_id":"","sessionId":"s"})", "s", {}},
    // Beside huge and deep members.
    {R"({"tool_response":")" + huge('x') + "\"," + kMembers + "}", "s", "/d"},
    {"{" + kMembers + R"(,"tool_response":")" + huge('\\') + "\"}", "s", "/d"},
    {"{\"a\":" + huge('[') + huge(']') + "," + kMembers + "}", "s", "/d"},
    {R"({"session_id":")" + huge('s') + R"(","cwd":"/d"})", {}, "/d"},
    // Look-alikes.
    {R"({"tool_input":{"session_id":"no","cwd":"/no"},"prompt":"\"cwd\":\"/no\"","session_id":"s"})",
     "s",
     {}},
    {R"({"list":["session_id","no",{"cwd":"/no"}],"cwd":"/d"})", {}, "/d"},
    {R"({"a":"session_id","b":"cwd","c":{"properties":{"sessionID":"no"}}})", {}, {}},
    {R"({"session_id":42,"cwd":null,"x":"y"})", {}, {}},
    {R"({"session_id":"s"}{"cwd":"/no"})", "s", {}},
    // Faults: what stands before counts.
    {R"({"session_id":"s","cwd":"/home/u/cut)", "s", {}},
    {R"({"session_id":"s",]]]]]"cwd":"/no")", "s", {}},
    {R"({"session_id":"s","a":"\uZZZZ","cwd":"/no"})", "s", {}},
    {R"({{{{"session_id" "session_id":::,,,)", {}, {}},
    {std::string("\0\xFF\x80{", 4), {}, {}},
    // Escapes.
    {R"({"cwd":"\/home\/u\/\u00e9\u20ac\ud83d\ude00\n\t\"\\"})", {}, "/home/u/é€😀\n\t\"\\"},
    {R"({"\u0063wd":"/d"})", {}, "/d"},
    {R"({"cwd":"\ud83d-\ude00-\ud83d\u0041\ud83d"})", {}, "\uFFFD-\uFFFD-\uFFFDA\uFFFD"},
    {"{\"cwd\":\"/home/u/\xFF\xFE\"}", {}, "/home/u/\xFF\xFE"},
};

TEST(HookPayloadTest, FindsTheMembersHoweverItIsCut) {
  for (const Case& c : kCases) {
    for (const std::size_t pieceSize : {c.json.size() + 1, std::size_t(1), std::size_t(7)}) {
      const HookPayload payload = parsed(c.json, pieceSize);
      EXPECT_EQ(payload.sessionId, c.sessionId) << c.json.substr(0, 120) << " by " << pieceSize;
      EXPECT_EQ(payload.cwd, c.cwd) << c.json.substr(0, 120) << " by " << pieceSize;
    }
  }
}

TEST(HookPayloadTest, KnowsWhenNothingMoreCanCome) {
  HookPayloadParser parser;
  parser.feed(R"({"a":{"b":1},"turn-id":"7","model":"m-5")");
  EXPECT_FALSE(parser.isComplete());
  parser.feed("}");
  EXPECT_TRUE(parser.isComplete());
  EXPECT_EQ(parser.payload().turnId, "7");
  EXPECT_EQ(parser.payload().model, "m-5");
}

}  // namespace
}  // namespace kestrel
