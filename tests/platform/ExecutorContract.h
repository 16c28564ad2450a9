#pragma once

#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

/// An executor and a way to let time pass on it; everything that was due by then has run when it returns.
struct ExecutorSubject {
  std::unique_ptr<Executor> executor;
  std::function<void(double seconds)> letPass;
};

/// What every executor keeps to. Each program that includes this says which ones it has.
struct ExecutorKind {
  std::string name;
  ExecutorSubject (*make)();

  friend void PrintTo(const ExecutorKind& kind, std::ostream* out) { *out << kind.name; }
};

class ExecutorContract : public testing::TestWithParam<ExecutorKind> {
 protected:
  using Entries = std::vector<std::string>;

  // First, so that they outlive the thread of the subject's tasks; those own their registrations.
  Entries record_;
  RegistrationPtr registration_;
  ExecutorSubject subject_ = GetParam().make();
  Executor& executor_ = *subject_.executor;
};

TEST_P(ExecutorContract, RunsPostedTasksInOrder) {
  executor_.post([this] {
    executor_.post([this] {
      record_.emplace_back("first");
      executor_.post([this] { record_.emplace_back("posted by the first"); });
      record_.emplace_back("first ends");
    });
    executor_.post([this] { record_.emplace_back("second"); });
  });
  subject_.letPass(0.01);
  EXPECT_EQ(record_, (Entries{"first", "first ends", "second", "posted by the first"}));
}

TEST_P(ExecutorContract, RunsTimersByDueTimeUnlessGivenUp) {
  const auto late = executor_.after(0.02, [this] { record_.emplace_back("late"); });
  const auto early = executor_.after(0.01, [this] { record_.emplace_back("early"); });
  auto givenUp = executor_.after(0.005, [this] { record_.emplace_back("given up"); });
  givenUp.reset();
  const auto beyond = executor_.after(60, [this] { record_.emplace_back("beyond"); });
  subject_.letPass(0.1);
  EXPECT_EQ(record_, (Entries{"early", "late"}));
}

TEST_P(ExecutorContract, RepeatsUntilTheTaskEndsItself) {
  executor_.post([this] {
    registration_ = executor_.repeat(0, 0.005, [this] {
      record_.emplace_back("run");
      if (record_.size() == 3) registration_.reset();
    });
  });
  subject_.letPass(0.3);
  EXPECT_EQ(record_, (Entries{"run", "run", "run"}));
}

TEST_P(ExecutorContract, CallsAWatchAgainWhileTheDescriptorStaysReady) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  const UniqueDescriptor reading(ends[0]);
  const UniqueDescriptor writing(ends[1]);
  executor_.post([&] {
    registration_ = executor_.watch(reading.get(), Executor::Readiness::readable, [this] {
      record_.emplace_back("readable");
      if (record_.size() == 3) registration_.reset();
    });
    record_.emplace_back("watching");
  });
  const auto writer = executor_.after(0.01, [&] { EXPECT_EQ(::write(writing.get(), "x", 1), 1); });
  subject_.letPass(0.1);
  EXPECT_EQ(record_, (Entries{"watching", "readable", "readable"}));
}

TEST_P(ExecutorContract, TakesTasksFromOtherThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int n = 0; n < 50; ++n) executor_.post([this] { record_.emplace_back("posted"); });
      const auto givenUp = executor_.after(0, [] {});
    });
  }
  for (auto& thread : threads) thread.join();
  subject_.letPass(0.01);
  EXPECT_EQ(record_.size(), 200U);
}

}  // namespace kestrel
