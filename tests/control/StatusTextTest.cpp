#include <gmock/gmock.h>

#include "KestrelControl/StatusText.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

using testing::HasSubstr;

const Date kNow = *parseISO8601("2026-11-21T12:00:00Z");

Json session(const std::string& id) {
  return {{"id", id},
          {"agentType", "claude"},
          {"state", "working"},
          {"lastEventAt", "2026-11-21T11:59:48.000Z"},
          {"cwd", "/home/u/p"}};
}

TEST(StatusText, ShowsEverythingThatIsKnown) {
  const Json report = parseJson(R"({
    "statusDescription": "Active (1 working agent) — Claude Code working",
    "hold": {"state": "inForce", "since": "2026-11-21T11:47:56.000Z", "by": [
      {"service": "login manager", "kind": "idle", "state": "held", "detail": ""},
      {"service": "desktop session", "kind": "desktop", "state": "refused", "detail": "Access denied"}]},
    "sessions": [{"id": "s-1", "agentType": "claude", "state": "working",
                  "lastEventAt": "2026-11-21T11:59:48.000Z", "cwd": "/home/u/p"}],
    "power": {"isOnAC": false, "isCharging": false, "isLowPowerMode": true, "batteryPercent": 80,
              "timeRemainingMinutes": 90, "source": "UPower"},
    "thermalState": "fair", "thermalSource": "thermal zones", "lidClosed": true, "lidSource": "login manager",
    "helper": {"isHelperInstalled": true, "isDeepHoldActive": true, "currentSystemSleepDisabled": true,
               "leaseExpiresAt": "2026-11-21T12:00:59.000Z"},
    "pausedUntil": "2026-11-21T12:29:30.000Z"})");
  EXPECT_EQ(statusText(report, kNow),
            "Active (1 working agent) — Claude Code working\n"
            "Hold:     in force (login manager)\n"
            "          for 12 min 04 s\n"
            "          login manager, idle: held\n"
            "          desktop session, desktop: refused (Access denied)\n"
            "Power:    on battery, 80 %, 1 h 30 min left, low-power mode (UPower)\n"
            "Heat:     fair (thermal zones)\n"
            "Lid:      closed (login manager)\n"
            "Helper:   holds with the lid closed, for another 59 s unless renewed\n"
            "Sessions: 1\n"
            "          Claude Code  working    12 s ago         s-1                       /home/u/p\n"
            "Paused:   for another 29 min 30 s\n");
}

TEST(StatusText, NullAndMissingAreUnknown) {
  const std::string unknown =
      "unknown\nHold:     unknown\nPower:    unknown\nHeat:     unknown\nLid:      unknown\n"
      "Helper:   unknown\nSessions: none\n";
  EXPECT_EQ(statusText(Json::object(), kNow), unknown);
  for (
      const char* report :
      {R"({"statusDescription":3,"hold":[],"sessions":{"a":1},"power":7,"thermalState":null,"lidClosed":"no"})",
       R"({"hold":{"state":"new"},"power":{"isOnAC":true,"source":null},"thermalState":"nominal",
           "thermalSource":null,"lidClosed":false,"lidSource":null,"pausedUntil":"2026-11-21T11:59:59Z"})",
       "[1]", "null", "\"x\""}) {
    EXPECT_EQ(statusText(parseJson(report), kNow), unknown) << report;
  }
}

TEST(StatusText, ListsTenSessionsOfWhichNoneSteersTheTerminal) {
  Json report = {{"statusDescription", "x"}, {"sessions", Json::array()}};
  for (int i = 1; i <= 12; ++i) report["sessions"].push_back(session("s-" + std::to_string(i)));
  EXPECT_THAT(statusText(report, kNow), testing::EndsWith("          and 2 more\n"));
  report["sessions"].push_back(
      session("a\nb\x1b[2J\x7f\xc2\x9b"
              "1m—é"));
  EXPECT_THAT(sessionsText(report, kNow), HasSubstr("s-12 "));
  EXPECT_THAT(sessionsText(report, kNow), HasSubstr(" a?b?[2J??1m—é "));
}

}  // namespace
}  // namespace kestrel
