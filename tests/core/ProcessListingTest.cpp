#include <gmock/gmock.h>
#include <string>

#include "KestrelCore/Agents/ProcessListing.h"
#include "KestrelCore/Support/Utf8.h"

namespace kestrel {
namespace {

using testing::ElementsAre;

ProcessRow row(std::int32_t pid, std::string commandLine) {
  return {pid, std::nullopt, std::move(commandLine)};
}

TEST(ProcessListing, TakesALineApartAtTheFirstBlanks) {
  EXPECT_THAT(
      parseProcessListing("  PID COMMAND\n"
                          "    1 /sbin/init splash\n"
                          " 4242    node  /x/codex --resume \t\n"
                          "2147483647 a\r\n"
                          "7\n8 \n\n   \n9 last"),
      testing::Optional(ElementsAre(row(1, "/sbin/init splash"), row(4242, "node  /x/codex --resume"),
                                    row(2'147'483'647, "a"), row(7, ""), row(8, ""), row(9, "last"))));
}

TEST(ProcessListing, SkipsLinesWithoutAPidAndRefusesWhatIsNotUtf8) {
  for (const char* bad : {"PID COMMAND", "x1 a", "1x a", "2147483648 a", "99999999999999999999 a", "1.5 a",
                          "-", "0x10 a", "4242\tcodex"}) {
    EXPECT_THAT(parseProcessListing(std::string("5 before\n") + bad + "\n6 after\n"),
                testing::Optional(ElementsAre(row(5, "before"), row(6, "after"))))
        << bad;
  }
  EXPECT_FALSE(parseProcessListing("1 fine\n2 caf\xE9\n3 fine\n"));
}

TEST(ProcessListing, BadBytesBecomeQuestionMarksAndGoodOnesStay) {
  const struct {
    std::string bytes;
    std::string text;
  } rows[] = {
      {"\u00e9\u20ac\U0001F426", "\u00e9\u20ac\U0001F426"},
      {"a\xC0\xAF", "a??"},          // overlong
      {"\xED\xA0\x80.", "???."},     // half of a surrogate pair
      {"\xF4\x90\x80\x80", "????"},  // beyond the last code point
  };
  for (const auto& each : rows) {
    std::string text = each.bytes;
    makeUtf8(text);
    EXPECT_EQ(text, each.text);
    EXPECT_TRUE(isUtf8(text)) << each.text;
  }
}

}  // namespace
}  // namespace kestrel
