#include <algorithm>
#include <array>
#include <climits>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/StreamLogSink.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelPlatform/Simulated/ManualClock.h"

namespace kestrel {
namespace {

class LogSinkTest : public testing::Test {
 protected:
  void SetUp() override {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    reading_ = UniqueDescriptor(ends[0]);
    writing_ = UniqueDescriptor(ends[1]);
  }

  Logger logger(LogLineStyle style) const {
    return {makeStreamLogSink(writing_.get(), style, std::make_shared<ManualClock>()), "hooks"};
  }

  /// Everything that was written, by lines; ends the pipe.
  std::vector<std::string> writtenLines() {
    writing_.reset();
    std::vector<std::string> lines;
    std::string line;
    for (char c = 0; ::read(reading_.get(), &c, 1) == 1;) {
      c == '\n' ? lines.push_back(std::exchange(line, {})) : line.push_back(c);
    }
    return lines;
  }

  UniqueDescriptor reading_;
  UniqueDescriptor writing_;
};

TEST_F(LogSinkTest, WritesOneLinePerMessageThatForgesNoOtherAndSteersNoTerminal) {
  const Logger toFile = logger(LogLineStyle::file);
  toFile.debug("not shown");
  toFile.error("failed: {}", 13);
  toFile.info("{}",
              "a\nb\r\x1b[2J\x7f\t\xc2\x9b"
              "c\xc3\xa9 \xe2\x82\xac");
  toFile.info("{}", std::string_view("nul\0!", 5));
  logger(LogLineStyle::terminal).error("failed");
  EXPECT_THAT(
      writtenLines(),
      testing::ElementsAre("2026-11-21T03:27:05.000Z error hooks: failed: 13",
                           testing::EndsWith("Z hooks: a\\nb\\x0d\\x1b[2J\\x7f\\x09\\x9b"
                                             "cé €"),
                           testing::EndsWith("hooks: nul\\x00!"),
                           testing::MatchesRegex("[0-2][0-9]:[0-5][0-9]:[0-5][0-9] error hooks: failed")));
}

TEST_F(LogSinkTest, KeepsLinesWholeWithManyWritersAndCutsLongOnes) {
  {
    std::vector<std::thread> writers;
    for (int i = 0; i < 4; ++i) {
      writers.emplace_back([sink = logger(LogLineStyle::file)] {
        for (int n = 0; n < 3; ++n) sink.error("{}", std::string(3000, 'x'));
      });
    }
    for (auto& writer : writers) writer.join();
  }
  std::string accents;  // With the text before it, the cut falls within one.
  while (accents.size() < 2 * PIPE_BUF) accents += "é";
  logger(LogLineStyle::file).info("{}", accents);
  const std::vector<std::string> lines = writtenLines();
  ASSERT_EQ(lines.size(), 13U);
  const std::string whole = "2026-11-21T03:27:05.000Z error hooks: " + std::string(3000, 'x');
  EXPECT_EQ(std::count(lines.begin(), lines.end(), whole), 12);
  EXPECT_THAT(lines.back().size(), testing::AllOf(testing::Ge(PIPE_BUF - 3), testing::Lt(PIPE_BUF)));
  EXPECT_THAT(lines.back(), testing::EndsWith("é"));
}

}  // namespace
}  // namespace kestrel
