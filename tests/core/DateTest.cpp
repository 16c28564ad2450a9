#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "KestrelCore/Support/Date.h"

namespace kestrel {
namespace {

TEST(Date, IsWrittenAsIso8601WithinFourDigitYears) {
  const struct {
    double secondsSince1970;
    const char* text;
  } rows[] = {{1'795'231'625.25, "2026-11-21T03:27:05.250Z"},
              {4'107'542'400, "2100-03-01T00:00:00.000Z"},  // The day after February 28.
              {-0.001, "1969-12-31T23:59:59.999Z"},
              {59.9996, "1970-01-01T00:01:00.000Z"},
              {1e300, "9999-12-31T23:59:59.999Z"},
              {-1e300, "0001-01-01T00:00:00.000Z"},
              {std::numeric_limits<double>::quiet_NaN(), "0001-01-01T00:00:00.000Z"}};
  for (const auto& row : rows) EXPECT_EQ(iso8601(Date::since1970(row.secondsSince1970)), row.text);
}

TEST(Date, ReadsInstantsAndNothingElse) {
  const struct {
    const char* text;
    double secondsSince1970;
  } rows[] = {{"2026-11-21T03:27:05.250Z", 1'795'231'625.25},
              {"0001-01-01T00:00:00Z", -62'135'596'800},
              {"1970-01-01T02:00:00+02:00", 0},
              {"1969-12-31T18:30:00-0530", 0},
              {"1970-01-01T00:00:00.123456789Z", 0.123456789}};
  for (const auto& row : rows) {
    const auto date = parseISO8601(row.text);
    EXPECT_NEAR(date.value_or(Date()).secondsSince1970(), row.secondsSince1970, 1e-6) << row.text;
  }
  for (const char* text : {"", "2026-11-21", "2026-11-21T03:27:05", "2026-11-21 03:27:05Z",
                           "1900-02-29T00:00:00Z", "2026-13-01T00:00:00Z", "2026-11-21T03:60:05Z",
                           "2026-11-21T03:27:05Zx", "2026-11-21T03:27:05+99:99", "tomorrow"}) {
    EXPECT_EQ(parseISO8601(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kestrel
