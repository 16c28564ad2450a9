#include <gmock/gmock.h>
#include <vector>

#include "KestrelCore/Presentation/StatusLine.h"

namespace kestrel {
namespace {

HoldStatus holdWith(std::vector<HoldEvidence> evidence) {
  return holdStatus(Date(), std::move(evidence));
}

TEST(StatusLine, TellsHowFarTheHoldIsInForce) {
  using enum HoldEvidenceState;
  struct Case {
    std::vector<HoldEvidence> evidence;
    std::string words;
  };
  const Case cases[] = {
      // A sleep or display lock alone keeps no idle machine awake.
      {{{"login manager", HoldKind::idle, refused, "Access denied"},
        {"login manager", HoldKind::sleep, held, ""}},
       "wanted: refused by the login manager (Access denied)"},
      {{{"login manager", HoldKind::idle, held, ""},
        {"desktop session", HoldKind::desktop, held, "17"},
        {"screen saver", HoldKind::display, held, "18"}},
       "in force (login manager, desktop session)"},
      {{{"login manager", HoldKind::idle, unavailable, "not running"},
        {"login manager", HoldKind::sleep, unavailable, "not running"},
        {"desktop session", HoldKind::desktop, pending, ""},
        {"kestrel-helper", HoldKind::lid, unavailable, "the helper does not answer"}},
       "wanted: not running; asking the desktop session"},
      {{{"login manager", HoldKind::idle, lost, "not running"},
        {"login manager", HoldKind::sleep, lost, "not running"}},
       "lost, taking it again: not running"},
      {{}, "wanted"},
  };
  for (const auto& [evidence, words] : cases) EXPECT_EQ(describeHold(holdWith(evidence)), words);
  EXPECT_EQ(describeHold({}), "");
}

TEST(StatusLine, ACountdownAloneIsNoNews) {
  const auto at = [](const char* seconds) {
    return statusLine(WakeDecision::hold("Release debounce (" + std::string(seconds) + "s)", 0, true), {});
  };
  EXPECT_EQ(at("30").text, "Active (0 working agents) — Release debounce (30s)");
  EXPECT_EQ(at("30").withoutCountdown, "Active (0 working agents) — Release debounce");
  EXPECT_EQ(at("9").withoutCountdown, at("30").withoutCountdown);
}

}  // namespace
}  // namespace kestrel
