#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Usage/Providers/LogLineReader.h"
#include "KestrelCore/Usage/Providers/SubstringFilter.h"

namespace kestrel {
namespace {

using testing::ElementsAre;

class LogLineReaderTest : public testing::Test {
 protected:
  /// The lines that are new, each with its two indices; long ones as their length.
  std::vector<std::string> read() {
    std::vector<std::string> lines;
    isRead_ = reader_.read(path_, position_, [&](const LogLineReader::Line& line) {
      const std::string text(line.text.size() > 99 ? std::to_string(line.text.size()) : line.text);
      lines.push_back(fmt::format("{}/{} {}", line.indexInFile, line.indexInReading, text));
    });
    return lines;
  }
  void append(std::string_view text) { std::ofstream(path_, std::ios::binary | std::ios::app) << text; }

  TemporaryDirectories folders_;
  const std::string path_ = folders_.root() / "a.jsonl";
  LogLineReader reader_;
  LogLineReader::Position position_;
  bool isRead_ = false;
};

TEST_F(LogLineReaderTest, HandsOutEachLineOnceAsTheFileGrows) {
  const std::pair<std::string, std::vector<std::string>> steps[] = {
      {"a\n\nb\r\n", {"0/0 a", "1/1 b\r"}},
      {"", {}},
      {"{\"half\":", {}},
      {"\"}\"", {}},
      {"}\n", {"2/0 {\"half\":\"}\"}"}},
      {"{\"whole\":[1]} ", {"3/0 {\"whole\":[1]} "}},
      {"\n{\"next\":1}\n", {"4/0 {\"next\":1}"}},
      {"no object", {}},
      {"\n{} {}", {"5/0 no object"}},
      {std::string("\n\0\0\n", 4), {"6/0 {} {}", std::string("7/1 \0\0", 6)}},
  };
  for (const auto& [text, expected] : steps) {
    append(text);
    EXPECT_EQ(read(), expected) << text;
  }
}

TEST_F(LogLineReaderTest, LinesOfAnyLengthAroundTheBuffersEnd) {
  constexpr auto kBuffer = LogLineReader::kBufferBytes;
  std::vector<std::string> expected;
  for (const auto length : {kBuffer - 1, kBuffer, kBuffer + 1, 3 * kBuffer, std::size_t{200}, 9 * kBuffer}) {
    append(std::string(length, 'x') + "\n");
    expected.push_back(fmt::format("{0}/{0} {1}", expected.size(), length));
  }
  EXPECT_EQ(read(), expected);
}

TEST_F(LogLineReaderTest, PassesOverAnOverlongLineEvenInSteps) {
  constexpr auto kLimit = LogLineReader::kMaximumLineBytes;
  append("a\n" + std::string(kLimit - 1, 'x') + "\n");
  EXPECT_THAT(read(), ElementsAre("0/0 a", fmt::format("1/1 {}", kLimit - 1)));
  // Holes cost no disk and read as NUL.
  const auto grow = [&] { std::filesystem::resize_file(path_, std::filesystem::file_size(path_) + kLimit); };
  grow();
  EXPECT_THAT(read(), ElementsAre());
  grow();
  EXPECT_THAT(read(), ElementsAre());
  EXPECT_TRUE(position_.isInOverlongLine);
  append("}\nb\n");
  EXPECT_THAT(read(), ElementsAre("3/1 b"));
}

TEST_F(LogLineReaderTest, AShorterOrAnotherFileIsReadFromItsBeginning) {
  append("a\nb\n");
  EXPECT_THAT(read(), ElementsAre("0/0 a", "1/1 b"));
  std::filesystem::resize_file(path_, 2);
  EXPECT_THAT(read(), ElementsAre("0/0 a"));
  writeFixture(path_ + ".new", "c\nd\ne\n");
  std::filesystem::rename(path_ + ".new", path_);
  EXPECT_THAT(read(), ElementsAre("0/0 c", "1/1 d", "2/2 e"));

  std::filesystem::remove(path_);
  ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
  EXPECT_THAT(read(), ElementsAre());
  EXPECT_FALSE(isRead_);
}

TEST(JsonPicker, TakesWhatItWasAskedForWhateverElseIsThere) {
  JsonPicker json{"n", "a.s", "a.b"};
  // n as tokens, integer and number; a.s; whether a.b is an object.
  const std::pair<std::string, const char*> rows[] = {
      {R"( {"a":{"x":[{"n":1}],"b":{"n":2},"s":"\u00e9"} , "n" : 15.0} )", "15 15 15 é object"},
      {R"({"n":-1,"a":{"s":7,"b":[]}})", "- -1 -1 -"},
      {R"({"n":1000000000001,"a":"s"})", "- 1000000000001 1000000000001 -"},
      {R"({"n":1000000000000000000000000000000,"a":{"s":"t"}})", "- - - t"},
      {R"({"n":"5","a":{"s":true}})", "- - - -"},
      {R"({"n":1,"n":2})", "2 2 2 -"},
      {"{\"a\":{\"s\":\"x\xff\"},\"n\":3}", "3 3 3 x?"},
      {R"({"x":)" + std::string(900, '[') + std::string(900, ']') + R"(,"n":4})", "4 4 4 -"},
      {R"([{"n":1}])", "bad"},
      {R"({"n":1} {"n":2})", "bad"},
      {R"({"n":1,"a":{)", "bad"},
      {std::string("{\"a\":{\"s\":\"\0\"}}", 15), "bad"},
  };
  for (const auto& [text, expected] : rows) {
    const std::string padded = text + std::string(JsonPicker::kPadding, '"');
    const auto shown = [](const auto& value) { return value ? fmt::format("{}", *value) : "-"; };
    std::string found = "bad";
    if (json.read({padded.data(), text.size()})) {
      found = fmt::format("{} {} {} {}{}", shown(json.tokens(0)), shown(json.integer(0)),
                          shown(json.number(0)), shown(json.string(1)), json.isObject(2) ? " object" : "");
    }
    EXPECT_EQ(found, expected) << text.substr(0, 99);
  }
}

TEST(SubstringFilter, FindsATextWhereverItStands) {
  const SubstringFilter<2, 6> filter({R"("usage")", R"("model")"});
  for (std::size_t at = 0; at < 300; ++at) {
    EXPECT_TRUE(filter.matches(std::string(at, '"') + R"("model")" + std::string(at, 'u'))) << at;
    EXPECT_FALSE(filter.matches(std::string(at, 'x') + R"("usag"odel")" + std::string(300, '"')));
  }
}

}  // namespace
}  // namespace kestrel
