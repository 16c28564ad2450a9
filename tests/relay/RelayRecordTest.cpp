#include <gtest/gtest.h>

#include "KestrelRelay/RelayRecord.h"

namespace kestrel {
namespace {

const HookSurroundings kSurroundings{4711, "/home/u/here", Date::since1970(1'700'000'000.5)};

TEST(RelayRecordTest, StaysWithinTheSizeOfOneReadWhateverIsInIt) {
  for (const char filler : {'x', '\x01', '"', '\xFF'}) {
    for (const std::size_t length : {500U, 1024U, 4096U, 100'000U}) {
      RelayOptions options;
      options.agent = "gemini";
      options.sessionId = options.cwd = options.model = std::string(length, filler);
      HookPayload payload;
      payload.turnId = std::string(length, filler);
      const HookEvent event = makeHookEvent(options, payload, AgentState::idle, kSurroundings);
      const std::string record = encodeRecord(event);
      ASSERT_LT(record.size(), kMaximumRecordSize);
      const HookEvent received = HookEvent::parse(record, Date());
      EXPECT_EQ(received.sessionId == "gemini-4711", length > 1024) << length << " of " << int(filler);
      EXPECT_EQ(received.pid, 4711);
    }
  }
}

}  // namespace
}  // namespace kestrel
