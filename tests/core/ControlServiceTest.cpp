#include <string>
#include <vector>

#include "tests/core/AppCoordinatorFixture.h"

#include "KestrelCore/Control/ControlService.h"
#include "KestrelCore/Control/StatusReport.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

class ControlServiceTest : public AppCoordinatorFixture {
 protected:
  ControlServiceTest() { app_->start(); }

  /// The reply as the client gets it.
  Json perform(const std::string& command, std::vector<std::string> arguments = {}) {
    return parseJson(encodeControlReply(service_.perform({command, std::move(arguments)})));
  }

  ControlService service_{*app_, [] { return false; }};
};

TEST_F(ControlServiceTest, RefusesWhatItDoesNotUnderstandAndChangesNothing) {
  const Json before = perform("settings", {"list"});
  const struct {
    std::string command;
    std::vector<std::string> arguments;
    const char* expected;
  } rows[] = {
      {"Status", {}, "Unknown command 'Status'"},
      {"status", {"--json"}, "Wrong number of arguments for 'status'"},
      {"pause", {"soon"}, "'soon' is no duration"},
      {"hold", {"yes"}, "'hold' takes on or off"},
      {"settings", {"get"}, "'settings' takes"},
      {"settings", {"set", "noSuch", "1"}, "There is no setting 'noSuch'"},
      {"settings", {"set", "masterEnabled", "0"}, "masterEnabled takes true or false"},
      {"settings", {"set", "batteryFloorPercent", "15.5"}, "batteryFloorPercent takes a whole number"},
      {"settings", {"set", "releaseDelaySeconds", "1e999"}, "releaseDelaySeconds takes a number of seconds"},
      {"settings", {"set", "pauseUntil", "tomorrow"}, "pauseUntil takes a date"},
      {"settings", {"set", "launchAtLogin", std::string(100, '[')}, "launchAtLogin takes true or false"},
  };
  for (const auto& row : rows) {
    const Json reply = perform(row.command, row.arguments);
    EXPECT_EQ(reply["ok"], false);
    EXPECT_THAT(reply["error"].get<std::string>(), testing::HasSubstr(row.expected));
  }
  EXPECT_EQ(perform("settings", {"list"}), before);
  machine_.userDefaults->failWrites(true);
  EXPECT_EQ(perform("disable")["ok"], false) << "what is not kept is told";
}

TEST_F(ControlServiceTest, StatusTellsWhatIsKnownAndNullOtherwise) {
  machine_.lid->set(false);
  machine_.lid->fireChange();
  EXPECT_EQ(perform("status")["result"]["power"]["batteryPercent"], nullptr);
  setBattery(57);
  hook("s", AgentState::working);
  const Json full = perform("status")["result"];
  EXPECT_EQ(full["lidClosed"], false);
  EXPECT_EQ(full["power"]["batteryPercent"], 57);
  EXPECT_EQ(full["hold"]["since"], "2026-11-21T03:27:05.000Z");
  EXPECT_EQ(full["decision"]["hold"]["activeAgentCount"], 1);
}

}  // namespace
}  // namespace kestrel
