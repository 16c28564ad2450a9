#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <sys/socket.h>
#include <unistd.h>

#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelPlatform/PlatformFactory.h"
#include "KestrelPlatform/Simulated/SimulatedPeerIdentity.h"

namespace kestrel {
namespace {

TEST(PeerIdentityContract, KnowsTheOwnUserAtTheOtherEndAndNobodyWhereNobodyIs) {
  const SimulatedPeerIdentity simulated;
  const std::unique_ptr<PeerIdentity> real = makePeerIdentity();
  std::array<int, 2> ends{};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
  const UniqueDescriptor near(ends[0]);
  const UniqueDescriptor far(ends[1]);
  EXPECT_EQ(simulated.userOf(near.get()), ::geteuid());
  EXPECT_EQ(real->userOf(near.get()), ::geteuid());

  const UniqueDescriptor unconnected(::socket(AF_UNIX, SOCK_STREAM, 0));
  const UniqueDescriptor internet(::socket(AF_INET, SOCK_STREAM, 0));
  const UniqueDescriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  for (const int descriptor : {unconnected.get(), internet.get(), file.get(), -1}) {
    EXPECT_FALSE(real->userOf(descriptor).has_value());
  }
}

}  // namespace
}  // namespace kestrel
