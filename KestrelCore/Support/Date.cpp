#include "KestrelCore/Support/Date.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace kestrel {
namespace {

// 0001-01-01T00:00:00.000Z and 9999-12-31T23:59:59.999Z, in milliseconds since 1970.
constexpr std::int64_t kFirstMillisecond = -62'135'596'800'000;
constexpr std::int64_t kLastMillisecond = 253'402'300'799'999;

std::int64_t millisecondsSince1970(Date date) {
  const double milliseconds = std::floor(date.secondsSince1970() * 1000 + 0.5);
  if (!(milliseconds > static_cast<double>(kFirstMillisecond))) return kFirstMillisecond;
  if (milliseconds >= static_cast<double>(kLastMillisecond)) return kLastMillisecond;
  return static_cast<std::int64_t>(milliseconds);
}

/// Takes characters from the front of a text; every step fails once one has failed.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  [[nodiscard]] bool failed() const { return failed_; }
  [[nodiscard]] bool atEnd() const { return rest_.empty(); }

  bool take(char expected) {
    if (rest_.empty() || rest_.front() != expected) return false;
    rest_.remove_prefix(1);
    return true;
  }
  void fail() { failed_ = true; }
  void require(char expected) {
    if (!take(expected)) fail();
  }
  int digits(int count) {
    int value = 0;
    for (int i = 0; i < count; ++i) value = value * 10 + digit().value_or(0);
    return value;
  }
  double fraction() {
    double value = 0;
    double scale = 0.1;
    do {
      value += digit().value_or(0) * scale;
      scale /= 10;
    } while (atDigit());
    return value;
  }

 private:
  [[nodiscard]] bool atDigit() const {
    return !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9';
  }
  std::optional<int> digit() {
    if (!atDigit()) {
      failed_ = true;
      return std::nullopt;
    }
    const int value = rest_.front() - '0';
    rest_.remove_prefix(1);
    return value;
  }

  std::string_view rest_;
  bool failed_ = false;
};

/// Seconds to subtract for "Z", "+02:00" or "-0530".
double takeOffset(Reader& reader) {
  if (reader.take('Z')) return 0;
  const bool west = reader.take('-');
  if (!west) reader.require('+');
  const int hours = reader.digits(2);
  reader.take(':');
  const int minutes = reader.digits(2);
  if (hours > 23 || minutes > 59) reader.fail();
  return (west ? -1 : 1) * (hours * 3600.0 + minutes * 60.0);
}

}  // namespace

std::string iso8601(Date date) {
  using namespace std::chrono;
  const sys_time<milliseconds> instant{milliseconds{millisecondsSince1970(date)}};
  const auto day = floor<days>(instant);
  const year_month_day calendar{day};
  const hh_mm_ss time{instant - day};
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(calendar.year()),
                static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
  return text;
}

std::optional<Date> parseISO8601(std::string_view text) {
  using namespace std::chrono;
  Reader reader(text);
  const int yearNumber = reader.digits(4);
  reader.require('-');
  const int monthNumber = reader.digits(2);
  reader.require('-');
  const int dayNumber = reader.digits(2);
  reader.require('T');
  const int hours = reader.digits(2);
  reader.require(':');
  const int minutes = reader.digits(2);
  reader.require(':');
  const int seconds = reader.digits(2);
  const double fraction = reader.take('.') ? reader.fraction() : 0;
  const double offset = takeOffset(reader);
  const year_month_day calendar{year{yearNumber}, month{static_cast<unsigned>(monthNumber)},
                                day{static_cast<unsigned>(dayNumber)}};
  if (reader.failed() || !reader.atEnd() || !calendar.ok()) return std::nullopt;
  if (hours > 23 || minutes > 59 || seconds > 60) return std::nullopt;
  const auto wholeDays = static_cast<double>(sys_days{calendar}.time_since_epoch().count());
  const double secondsOfDay = hours * 3600.0 + minutes * 60.0 + seconds;
  return Date::since1970(wholeDays * 86'400 + secondsOfDay + fraction - offset);
}

}  // namespace kestrel
