#include <chrono>
#include <csignal>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <sys/resource.h>

#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelPlatform/Linux/JsonFileDefaults.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

class JsonFileDefaultsTest : public testing::Test {
 protected:
  JsonFileDefaultsTest() { fs::create_directories(path_.parent_path()); }

  void writeFile(const std::string& content) const { std::ofstream(path_) << content; }

  static std::string contentOf(const fs::path& path) {
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  TemporaryDirectories temporary_;
  const fs::path path_ = temporary_.directories().settingsFile();
  const fs::path aside_ = path_.string() + ".unreadable-20261121T032705Z";
  ManualExecutor executor_;
  std::shared_ptr<MemoryLogSink> sink_ = std::make_shared<MemoryLogSink>();
  const Logger logger_{sink_, "settings"};
  std::shared_ptr<AtomicFileWriter> files_ = std::make_shared<AtomicFileWriter>(
      std::make_shared<KestrelWritePolicy>(temporary_.directories(), sink_), logger_);
  JsonFileDefaults defaults_{path_, executor_, files_, executor_.clock(), logger_};
};

TEST_F(JsonFileDefaultsTest, LeavesAnUnusableFileInPlaceUntilItsFirstWrite) {
  const std::string huge =
      R"({"limit": 35, "padding": ")" + std::string(JsonFileDefaults::kMaximumBytes, 'x') + "\"}";
  for (const std::string& content :
       {std::string(), std::string("{\"limit\": 35"), std::string("[35]"), std::string("35"),
        std::string("{\"limit\": 1e999}"), std::string("{\"limit\": 35, \"name\": \"\xff\"}"),
        std::string(5000, '['), huge}) {
    SCOPED_TRACE(content.substr(0, 40));
    sink_->clear();
    fs::remove(aside_);
    writeFile(content);
    EXPECT_FALSE(defaults_.integerForKey("limit").has_value());
    ASSERT_TRUE(defaults_.remove("flag"));
    EXPECT_EQ(contentOf(path_), content);
    EXPECT_THAT(sink_->lines("settings"), testing::ElementsAre(testing::HasSubstr("Using default settings")));

    ASSERT_TRUE(defaults_.setBool("flag", true));
    EXPECT_EQ(contentOf(aside_), content);
    EXPECT_EQ(contentOf(path_), "{\n  \"flag\": true\n}\n");
    EXPECT_EQ(sink_->count(aside_.string()), 1U);
  }
}

TEST_F(JsonFileDefaultsTest, ReadsWhatWasWritten) {
  const auto greatest = std::numeric_limits<std::int64_t>::max();
  const Date date = Date::sinceReferenceDate(816'924'425.25);
  ASSERT_TRUE(defaults_.setInteger("greatest", greatest));
  ASSERT_TRUE(defaults_.setDouble("tenth", 0.1));
  ASSERT_TRUE(defaults_.setDate("date", date));
  EXPECT_EQ(defaults_.integerForKey("greatest"), greatest);
  EXPECT_FALSE(defaults_.setDouble("tenth", std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(defaults_.doubleForKey("tenth"), 0.1);
  EXPECT_EQ(defaults_.dateForKey("date"), date);
}

TEST_F(JsonFileDefaultsTest, ReadsEachWrongValueAsAbsentAndTheOthersAsTheyAre) {
  writeFile(R"({"word": "35", "null": null, "list": [1], "zero": 0, "fifteen": 15.0, "whole": 35,
                "beyond": 9223372036854775808, "far": 123456789012345678901234567890})");
  for (const char* key : {"word", "null", "list", "fifteen", "beyond", "far", "missing"}) {
    EXPECT_FALSE(defaults_.integerForKey(key).has_value()) << key;
  }
  for (const char* key : {"word", "null", "list", "zero", "whole"}) {
    EXPECT_FALSE(defaults_.boolForKey(key).has_value()) << key;
  }
  EXPECT_EQ(defaults_.integerForKey("whole"), 35);
  EXPECT_EQ(defaults_.doubleForKey("whole"), 35.0);
  EXPECT_EQ(sink_->lines().size(), 0U);
}

TEST_F(JsonFileDefaultsTest, LosesNothingOnAFullDisk) {
  // As on one: files can be made and renamed, but nothing can be written into them.
  const auto old = std::signal(SIGXFSZ, SIG_IGN);
  rlimit limits{};
  ::getrlimit(RLIMIT_FSIZE, &limits);
  const rlimit none{0, limits.rlim_max};
  for (const std::string content : {R"({"limit": 35})", R"({"limit": 35)"}) {
    writeFile(content);
    const auto before = defaults_.integerForKey("limit");
    ::setrlimit(RLIMIT_FSIZE, &none);
    const bool isKept = defaults_.setInteger("limit", 40);
    ::setrlimit(RLIMIT_FSIZE, &limits);
    EXPECT_FALSE(isKept) << content;
    EXPECT_EQ(contentOf(path_), content);
    EXPECT_EQ(defaults_.integerForKey("limit"), before) << content;
    EXPECT_EQ(std::distance(fs::directory_iterator(path_.parent_path()), {}), 1) << content;
    EXPECT_TRUE(defaults_.setInteger("limit", 40)) << content;
  }
  std::signal(SIGXFSZ, old);
}

TEST_F(JsonFileDefaultsTest, NoticesEveryKindOfOutsideChangeOnce) {
  int told = 0;
  auto observation = defaults_.observeOutsideChanges([&] { ++told; });
  const auto expectTold = [&](int expected, const char* what) {
    executor_.advance(1);
    EXPECT_EQ(told, expected) << what;
  };
  ASSERT_TRUE(defaults_.setInteger("limit", 20));
  expectTold(0, "an own write");
  writeFile(R"({"limit": 35})");
  ASSERT_TRUE(defaults_.setBool("flag", true));
  expectTold(1, "changed, and then written to");
  fs::last_write_time(path_, fs::last_write_time(path_) + std::chrono::seconds(5));
  expectTold(1, "touched, same values");
  const fs::path other = path_.string() + ".other";
  std::ofstream(other) << R"({"limit": 40})";
  fs::last_write_time(other, fs::last_write_time(path_));
  fs::rename(other, path_);
  expectTold(2, "replaced by a file of the same size and time");
  EXPECT_EQ(defaults_.integerForKey("limit"), 40);
  writeFile("{");
  expectTold(3, "damaged");
  fs::remove(path_);
  expectTold(3, "removed, still empty");
  observation.reset();
  EXPECT_EQ(executor_.timerCount(), 0U);
}

}  // namespace
}  // namespace kestrel
