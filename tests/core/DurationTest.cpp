#include <gtest/gtest.h>

#include "KestrelCore/Control/Duration.h"

namespace kestrel {
namespace {

TEST(Duration, ReadsWhatPeopleTypeAndRefusesAnythingElse) {
  const struct {
    const char* text;
    std::optional<double> seconds;
  } rows[] = {
      {"90s", 90},     {"30", 1800},   {"1h30m", 5400}, {"1h1m1s", 3661}, {"8760h", 31'536'000},
      {"8760h1s", {}}, {"525601", {}}, {"", {}},        {"0m", {}},       {"m", {}},
      {"-5", {}},      {"1.5h", {}},   {"1h30", {}},    {"30m1h", {}},    {"5m5m", {}},
      {"1d", {}},      {" 5", {}},     {"5m\n", {}},    {"0x10", {}},     {"99999999999999999999s", {}}};
  for (const auto& row : rows) EXPECT_EQ(parseDuration(row.text), row.seconds) << row.text;
}

}  // namespace
}  // namespace kestrel
