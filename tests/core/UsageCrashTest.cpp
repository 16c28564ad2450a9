#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <random>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "tests/core/UsageStoreFixture.h"

#include "KestrelCore/Usage/UsageStoreFile.h"

namespace kestrel {
namespace {

std::mt19937 randomNumber{std::random_device{}()};

/// Turns are numbered from 0; `next` is behind the last that was acknowledged.
struct CrashWorld : UsageStoreWorld {
  void record(int count) {
    std::vector<UsageEvent> batch;
    for (int i = 0; i < count; ++i, ++next) batch.push_back(turn(std::to_string(next), next));
    if (store->record(batch) != batch.size()) ::_exit(1);
  }
  [[noreturn]] void recordForEver(int pipe) {
    open();
    for (;;) {
      record(5);
      if (::write(pipe, &next, sizeof next) != sizeof next) ::_exit(1);
      if (next % 40 < 5) store->saveWhenIdle();
    }
  }
  /// Lets a child record, and kills it after some acknowledgements, anywhere within the next ones.
  void killOne(unsigned acknowledgements) {
    store.reset();
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) recordForEver(ends[1]);
    ::close(ends[1]);
    const UniqueDescriptor reading(ends[0]);
    for (auto i = randomNumber() % acknowledgements; i > 0; --i) (void)!::read(ends[0], &next, sizeof next);
    std::this_thread::sleep_for(std::chrono::microseconds(randomNumber() % 3000));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    while (::read(ends[0], &next, sizeof next) == sizeof next) {
    }
  }
  void check() {
    ASSERT_EQ(UsageStoreFile::load(file).found, UsageStoreFile::Found::schema);
    std::set<int> found;
    std::int64_t tokens = 0;
    for (const auto& event : onDisk()) {
      ASSERT_TRUE(found.insert(std::stoi(*event.turnId)).second) << "twice";
      tokens += *event.outputTokens;
    }
    for (int i = 0; i < next; ++i) ASSERT_TRUE(found.contains(i)) << "lost";
    EXPECT_EQ(UsageStore(dependencies(false)).recentSessions(1)[0].outputTokens, tokens);
    EXPECT_EQ(logged("Ignored"), 0U);
    next = *found.rbegin() + 1;
  }
  int next = 0;
};

TEST(UsageCrashTest, WhatWasAcceptedIsThereOnceAfterTwoHundredKills) {
  for (int i = 0; i < 50 && !testing::Test::HasFailure(); ++i) {
    CrashWorld world;
    world.record(i % 2 == 0 ? 1 : 1500);
    for (int child = 0; child < 4; ++child) {
      world.killOne(i % 2 == 0 ? 8 : 40);
      world.check();
    }
  }
}

}  // namespace
}  // namespace kestrel
