#include <gmock/gmock.h>

#include "KestrelCore/Diagnostics/Doctor.h"
#include "KestrelCore/Diagnostics/DoctorFindings.h"

namespace kestrel {
namespace {

using State = CapabilityState;

std::vector<State> statesOf(const DoctorFindings& findings) {
  std::vector<State> states;
  for (const auto& capability : examine(findings)) states.push_back(capability.state);
  return states;
}

DoctorFindings healthy() {
  DoctorFindings findings;
  findings.services = {{"login manager", HoldKind::idle, HoldEvidenceState::pending, ""},
                       {"desktop session", HoldKind::desktop, HoldEvidenceState::pending, ""}};
  findings.power = {82, false, false, false, 120};
  findings.powerSource = "UPower";
  findings.thermalSource = "thermal zones";
  findings.lidSource = "login manager";
  findings.lidClosed = false;
  findings.helper = DeepSleepStatus{true, false, {}, {}, false, false};
  findings.processSource = "/proc";
  findings.hookSocketListens = true;
  findings.readableLogs = {"Claude Code"};
  return findings;
}

TEST(Doctor, AllWorks) {
  const auto report = examine(healthy());
  for (const auto& capability : report) {
    EXPECT_EQ(capability.state, State::works) << capability.name;
    EXPECT_EQ(capability.advice, "") << capability.name;
  }
  EXPECT_EQ(report[2].detail, "UPower: 82 %, on battery");
}

TEST(Doctor, NothingIsThere) {
  DoctorFindings findings;
  findings.services = {
      {"login manager", HoldKind::idle, HoldEvidenceState::unavailable, "it is not running"}};
  EXPECT_THAT(statesOf(findings),
              testing::ElementsAre(State::unavailable, State::unavailable, State::unavailable,
                                   State::unavailable, State::unavailable, State::unavailable,
                                   State::unavailable, State::limited, State::works, State::unavailable));
  EXPECT_EQ(examine(findings)[0].detail, "it is not running");
}

TEST(Doctor, NamesWhatIsBroken) {
  DoctorFindings findings = healthy();
  findings.services[1].state = HoldEvidenceState::refused;
  findings.settingsProblem = "it is no JSON object";
  findings.settingsPath = "/home/u/.config/com.kestrel.app.json";
  findings.unreadableLogs = {"Codex CLI"};
  findings.helper->isDeepHoldActive = true;
  const auto report = examine(findings);
  EXPECT_EQ(report[1].state, State::unavailable);
  EXPECT_EQ(report[5].detail, "the helper cannot switch sleep off");
  EXPECT_EQ(report[8].state, State::limited);
  EXPECT_EQ(report[8].advice, "mend or remove /home/u/.config/com.kestrel.app.json");
  EXPECT_EQ(report[9].detail, "not readable: Codex CLI");
}

}  // namespace
}  // namespace kestrel
