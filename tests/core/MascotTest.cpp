#include <gtest/gtest.h>
#include <set>
#include <string>

#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"
#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

std::vector<AgentSessionPtr> sessionsIn(const std::vector<AgentState>& states) {
  std::vector<AgentSessionPtr> sessions;
  for (const auto state : states) {
    AgentSession session;
    session.state = state;
    sessions.push_back(std::make_shared<const AgentSession>(session));
  }
  return sessions;
}

TEST(KestrelVisualState, OneMoodForAllSessions) {
  using enum AgentState;
  const auto hold = WakeDecision::hold("Claude Code working", 1, false);
  const auto release = WakeDecision::release("No active agent sessions");
  const auto blocked = WakeDecision::blocked(SafetyBlock::paused);
  const struct {
    std::vector<AgentState> states;
    const WakeDecision& decision;
    KestrelVisualState expected;
  } rows[] = {
      {{}, release, KestrelVisualState::idle},
      {{}, hold, KestrelVisualState::idle},
      {{}, blocked, KestrelVisualState::error},
      {{working}, blocked, KestrelVisualState::error},
      {{unknown, idle, stale}, release, KestrelVisualState::idle},
      {{stale, completed}, release, KestrelVisualState::completed},
      {{completed, error}, release, KestrelVisualState::error},
      {{error, completed, waiting}, hold, KestrelVisualState::waiting},
      {{waiting, error, working}, hold, KestrelVisualState::working},
  };
  for (const auto& [states, decision, expected] : rows)
    EXPECT_EQ(rawValue(aggregateVisualState(sessionsIn(states), decision)), rawValue(expected));
}

TEST(PixelSpriteFrame, AlwaysHasItsSizeAndEndsAtItsEdges) {
  const PixelSpriteFrame shorter(16, 16, std::vector<PixelRGBA>(10, PixelRGBA::red));
  EXPECT_EQ(shorter.pixels().size(), 256U);
  EXPECT_EQ(shorter.pixelAt(9, 0), PixelRGBA::red);
  EXPECT_EQ(shorter.pixelAt(10, 0), PixelRGBA::clear);
  const PixelSpriteFrame longer(2, 2, std::vector<PixelRGBA>(10, PixelRGBA::red));
  EXPECT_EQ(longer.pixels().size(), 4U);
  for (const auto& [x, y] : {std::pair{-1, 0}, {0, -1}, {2, 0}, {0, 2}})
    EXPECT_EQ(longer.pixelAt(x, y), PixelRGBA::clear);
  EXPECT_TRUE(PixelSpriteFrame(-1, 4, {}).pixels().empty());
}

TEST(PixelSpriteFrame, IsReadAsItWasWrittenAndNothingElse) {
  const auto frame = KestrelBlobAvatarProvider::shared().frame(KestrelVisualState::error, 1);
  EXPECT_EQ(decodePixelSpriteFrame(encode(frame)), frame);
  for (const char* text : {R"({"width":1,"height":1})", R"({"width":-1,"height":1,"pixels":[]})",
                           R"({"width":1,"height":9000000000,"pixels":[]})",
                           R"({"width":1,"height":1,"pixels":[{"r":256,"g":0,"b":0,"a":0}]})"})
    EXPECT_THROW((void)decodePixelSpriteFrame(Json::parse(text)), DecodingError) << text;
  EXPECT_EQ(decodeKestrelVisualState("completed"), KestrelVisualState::completed);
  for (const Json& unknown : {Json("Completed"), Json(3), Json()})
    EXPECT_THROW((void)decodeKestrelVisualState(unknown), DecodingError);
}

/// The first row of a column that shows the body.
int topOfBody(const PixelSpriteFrame& frame, int column) {
  for (int y = 0; y < frame.height(); ++y) {
    if (frame.pixelAt(column, y) == PixelRGBA::blobCyan) return y;
  }
  return -1;
}

TEST(KestrelBlob, StandsStillBobsAtWorkAndRepeats) {
  const auto& blob = KestrelBlobAvatarProvider::shared();
  constexpr int kBesideAccents = 6;
  for (const auto state : allCases<KestrelVisualState>()) {
    const int count = blob.frameCount(state);
    for (int i = 0; i < count; ++i) {
      const bool isUp = state == KestrelVisualState::working && i % 2 == 0;
      EXPECT_EQ(topOfBody(blob.frame(state, i), kBesideAccents), isUp ? 4 : 5) << rawValue(state) << i;
      EXPECT_EQ(blob.frame(state, i), blob.frame(state, i + count));
      EXPECT_EQ(blob.frame(state, i), blob.frame(state, i - 3 * count));
    }
  }
  EXPECT_EQ(blob.frame(AgentState::stale, 7), blob.frame(KestrelVisualState::idle, 0));
}

TEST(KestrelBlob, EveryFrameIsAnotherPicture) {
  const auto& blob = KestrelBlobAvatarProvider::shared();
  std::set<std::string> pictures;
  std::size_t frames = 0;
  for (const auto state : allCases<KestrelVisualState>()) {
    for (int i = 0; i < blob.frameCount(state); ++i, ++frames)
      pictures.insert(encode(blob.frame(state, i)).dump());
  }
  EXPECT_EQ(pictures.size(), frames);
}

}  // namespace
}  // namespace kestrel
