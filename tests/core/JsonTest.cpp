#include <gtest/gtest.h>
#include <string>

#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

TEST(Json, LimitsTheDepthOfTheDocumentNotOfItsTexts) {
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_NO_THROW(parseJson(nested(64)));
  EXPECT_THROW(parseJson(nested(65)), DecodingError);
  EXPECT_THROW(parseJson(std::string(1'000'000, '[')), DecodingError);
  EXPECT_NO_THROW(parseJson(R"(["\")" + std::string(100, '[') + R"(", "\\"])"));
}

TEST(Json, ReadsNumbersOnlyWithinTheirRange) {
  const struct {
    const char* number;
    std::optional<std::int64_t> integer;
    std::optional<double> real;
  } rows[] = {{"15.0", 15, 15.0},
              {"15.5", {}, 15.5},
              {"9223372036854775807", INT64_MAX, 0x1p63},
              {"9223372036854775808", {}, 0x1p63},
              {"-9223372036854775808.0", INT64_MIN, -0x1p63},
              {"1e300", {}, 1e300},
              {"true", {}, {}},
              {"\"15\"", {}, {}}};
  for (const auto& row : rows) {
    const Json object = parseJson(R"({"n":)" + std::string(row.number) + "}");
    EXPECT_EQ(optionalInteger(object, "n"), row.integer) << row.number;
    EXPECT_EQ(optionalDouble(object, "n"), row.real) << row.number;
  }
}

TEST(Json, WritesAnyTextWithoutThrowing) {
  EXPECT_EQ(dumpJson({{"b", "\xff\n"}, {"a", std::numeric_limits<double>::quiet_NaN()}}),
            "{\"a\":null,\"b\":\"\xEF\xBF\xBD\\n\"}");
}

}  // namespace
}  // namespace kestrel
