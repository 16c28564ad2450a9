#include <cerrno>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <poll.h>
#include <string>

#include "tests/platform/PowerAssertionsDesktop.h"

#include "KestrelPlatform/Linux/BusText.h"
#include "KestrelPlatform/Linux/LinuxPowerAssertions.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"

namespace kestrel {
namespace {

constexpr auto kSystem = PowerAssertions::kPreventIdleSystemSleep;
constexpr auto kOn = PowerAssertions::kLevelOn;

TEST(BusTextTest, LetsThroughOnlyWhatABusAccepts) {
  const std::pair<std::string, std::string> cases[] = {
      {"Kestrel: 2 agents — Žluťoučký 🦅", "Kestrel: 2 agents — Žluťoučký 🦅"},
      {std::string("a\0b\nc\x7F", 6), "a?b?c?"},
      {"cut \xE2\x80", "cut ??"},
      {"surrogate \xED\xA0\x80", "surrogate ???"},
      {"beyond \xF4\x90\x80\x80 \xFF", "beyond ???? ?"},
      {std::string(255, 'x') + "é", std::string(255, 'x')},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(busText(text), expected);
}

class PowerAssertionsLinuxTest : public testing::Test {
 protected:
  /// False, with the test marked as skipped, when this machine cannot run a desktop.
  [[nodiscard]] bool start(const std::string& name) {
    if (!serve(name)) return false;
    makeAssertions();
    return true;
  }
  [[nodiscard]] bool serve(const std::string& name) {
    const bool isServed = desktop_.serve(name);
    if (!isServed) [] { GTEST_SKIP() << "no private session bus can be run here"; }();
    return isServed;
  }
  void makeAssertions() {
    assertions_ = makeLinuxPowerAssertions(executor_, log_, executor_.clock());
    assertions_->setOnEvidenceChanged([this] { ++changes_; });
  }
  PowerAssertionID create(std::string_view name = "Kestrel: work") {
    return assertions_->create(kSystem, kOn, name).id;
  }
  bool runUntil(const std::function<bool()>& condition) {
    for (int i = 0; i < 2500 && !condition(); ++i) {
      if (executor_.runPending() == 0) ::poll(nullptr, 0, 2);
    }
    return condition();
  }
  /// "STATE DETAIL" of a kind; empty when it is not there.
  std::string shown(HoldKind kind) {
    for (const HoldEvidence& each : assertions_->evidence()) {
      if (each.kind == kind) return std::string(rawValue(each.state)) + " " + each.detail;
    }
    return {};
  }
  bool becomes(HoldKind kind, const std::string& text) {
    return runUntil([&] { return shown(kind) == text; });
  }

  test::PrivateDesktop desktop_;
  ManualExecutor executor_;
  std::shared_ptr<MemoryLogSink> log_ = std::make_shared<MemoryLogSink>();
  std::unique_ptr<PowerAssertions> assertions_;
  int changes_ = 0;
};

TEST_F(PowerAssertionsLinuxTest, HoldsUntilReleasedAndAgainAfterARestartOfTheService) {
  if (!start("org.gnome.SessionManager")) return;
  EXPECT_TRUE(assertions_->evidence().empty());
  const PowerAssertionID system = create();
  const PowerAssertionID other = create("Kestrel: more");
  EXPECT_NE(system, 0U);
  EXPECT_NE(system, other);
  EXPECT_TRUE(becomes(HoldKind::desktop, "held "));
  EXPECT_GT(changes_, 0);

  desktop_.leave();
  EXPECT_TRUE(runUntil([&] { return shown(HoldKind::desktop).starts_with("lost "); }));
  if (!serve("org.gnome.SessionManager")) return;
  EXPECT_TRUE(becomes(HoldKind::desktop, "held "));

  assertions_->release(system + other + 1);
  assertions_->release(other);
  EXPECT_EQ(shown(HoldKind::desktop), "held ");
  assertions_->release(system);
  EXPECT_TRUE(assertions_->evidence().empty());
}

TEST_F(PowerAssertionsLinuxTest, AsksARefusingServiceAgainAndNotTooOften) {
  if (!start("org.gnome.SessionManager")) return;
  desktop_.tell("refuse");
  create();
  EXPECT_TRUE(becomes(HoldKind::desktop, "refused Not while presenting (AccessDenied)"));
  EXPECT_EQ(shown(HoldKind::sleep).substr(0, 28), "unavailable no system bus: N");
  executor_.advance(14.9);
  desktop_.tell("grant");
  EXPECT_EQ(desktop_.calls("refuse "), 1);
  executor_.advance(0.2);
  EXPECT_TRUE(becomes(HoldKind::desktop, "held "));
  EXPECT_EQ(shown(HoldKind::sleep), "");
  EXPECT_EQ(log_->count("The desktop hold at the desktop session is refused"), 1u);
}

TEST_F(PowerAssertionsLinuxTest, DoesNotWaitForASilentServiceButTakesItsLateAnswer) {
  if (!start("org.freedesktop.PowerManagement")) return;
  desktop_.tell("silent");
  create();
  EXPECT_TRUE(runUntil([&] { return desktop_.calls("silent ") == 1; }));
  EXPECT_EQ(shown(HoldKind::desktop), "pending ");
  EXPECT_EQ(shown(HoldKind::sleep), "");
  executor_.advance(5.1);
  EXPECT_TRUE(becomes(HoldKind::desktop, "refused no answer yet"));
  EXPECT_NE(shown(HoldKind::sleep), "");
  desktop_.tell("grant");
  EXPECT_TRUE(becomes(HoldKind::desktop, "held "));
  EXPECT_EQ(desktop_.calls("inhibit org.freedesktop.PowerManagement.Inhibit"), 1);
}

TEST_F(PowerAssertionsLinuxTest, SeesALossWhenItLooksEveryTenSeconds) {
  if (!start("org.gnome.SessionManager")) return;
  create();
  ASSERT_TRUE(becomes(HoldKind::desktop, "held "));
  desktop_.tell("forget");
  desktop_.tell("silent");
  const int before = changes_;
  executor_.advance(9.9);
  EXPECT_EQ(shown(HoldKind::desktop), "held ");
  executor_.advance(0.2);
  EXPECT_TRUE(becomes(HoldKind::desktop, "lost no longer shown by the service"));
  EXPECT_EQ(changes_, before + 1);
  desktop_.tell("grant");
  EXPECT_TRUE(becomes(HoldKind::desktop, "held "));
}

TEST_F(PowerAssertionsLinuxTest, GivesBackOnDestructionAndIsSilentThen) {
  if (!start("org.gnome.SessionManager")) return;
  create();
  ASSERT_TRUE(becomes(HoldKind::desktop, "held "));
  desktop_.tell("silent");
  create("Kestrel: more");
  executor_.runPending();
  assertions_.reset();
  const int before = changes_;
  EXPECT_TRUE(runUntil([&] { return desktop_.calls("uninhibit 1") + desktop_.calls("vanished") > 0; }));
  executor_.advance(60);
  EXPECT_EQ(changes_, before);
  EXPECT_EQ(executor_.timerCount(), 0u);
  EXPECT_EQ(executor_.watchCount(), 0u);
}

TEST_F(PowerAssertionsLinuxTest, SaysOnceThatThereIsNoBusAndFindsItLater) {
  const std::string address = ::getenv("DBUS_SESSION_BUS_ADDRESS");
  ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  makeAssertions();
  EXPECT_EQ(assertions_->create(kSystem, kOn, "Kestrel: work").code, EHOSTUNREACH);
  EXPECT_EQ(shown(HoldKind::idle), "unavailable no system bus: No such file or directory");
  executor_.advance(300);
  EXPECT_EQ(log_->count("no system bus: "), 2u);  // The bus itself, and what that means for holds.
  EXPECT_EQ(log_->count("no session bus: "), 1u);
  EXPECT_EQ(changes_, 0);
  ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
  if (!serve("org.gnome.SessionManager")) return;
  EXPECT_TRUE(runUntil([&] {
    executor_.advance(0.1);
    return shown(HoldKind::idle) == "unavailable it is there now and was not asked yet";
  }));
  EXPECT_NE(create(), 0u);
  EXPECT_TRUE(becomes(HoldKind::desktop, "held "));
}

}  // namespace
}  // namespace kestrel
