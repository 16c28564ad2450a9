#include <gtest/gtest.h>

#include "KestrelCore/Support/Mutex.h"

namespace kestrel {
namespace {

#ifndef NDEBUG

// What the test breaks on purpose, clang's analysis would refuse.
#if defined(__clang__)
__attribute__((no_thread_safety_analysis))
#endif
void lockBoth(LockRank first, LockRank second) {
  Mutex outer(first);
  Mutex inner(second);
  outer.lock();
  inner.lock();
}

TEST(MutexDeathTest, ABreachOfTheRanksAborts) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const char* message = "a lock was taken while another";
  EXPECT_DEATH(lockBoth(LockRank::component, LockRank::component), message);
  EXPECT_DEATH(lockBoth(LockRank::leaf, LockRank::component), message);
  EXPECT_DEATH(lockBoth(LockRank::leaf, LockRank::leaf), message);
}

#endif

}  // namespace
}  // namespace kestrel
