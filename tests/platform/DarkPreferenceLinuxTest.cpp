#include <gmock/gmock.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <utility>
#include <vector>

#include "tests/platform/PowerAssertionsDesktop.h"

#include "KestrelPlatform/PlatformFactory.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"

namespace kestrel {
namespace {

TEST(DarkPreferenceLinuxTest, FollowsThePortalThroughItsChangesAndItsEnd) {
  using Told = std::vector<std::optional<bool>>;
  test::PrivateDesktop desktop;
  constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
  if (!desktop.serve(kPortal)) GTEST_SKIP() << "no private session bus can be run here";
  desktop.tell("scheme 1");
  ManualExecutor executor;
  Told told;
  const auto following = followDarkPreference(executor, std::make_shared<MemoryLogSink>(),
                                              [&](std::optional<bool> dark) { told.push_back(dark); });
  const auto tells = [&](const Told& expected) {
    for (int i = 0; i < 2500 && told.size() < expected.size(); ++i) {
      if (executor.runPending() == 0) ::poll(nullptr, 0, 2);
    }
    EXPECT_EQ(std::exchange(told, {}), expected);
  };
  tells({true});
  desktop.tell("scheme 2");
  tells({false});
  desktop.tell("scheme 0");
  tells({std::nullopt});
  for (const char* command : {"scheme 7", "scheme 1", "scheme 1"}) desktop.tell(command);
  tells({true});
  desktop.leave();
  tells({std::nullopt});
  ASSERT_TRUE(desktop.serve(kPortal));
  desktop.tell("scheme 2");
  tells({false});
}

}  // namespace
}  // namespace kestrel
