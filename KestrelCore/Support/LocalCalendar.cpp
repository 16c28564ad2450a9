#include "KestrelCore/Support/LocalCalendar.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <tuple>

namespace kestrel {
namespace {

// Within the years 1 and 9999 by two days, so that every step from them stays inside; in seconds since 1970.
constexpr double kFirst = -62'135'424'000;
constexpr double kLast = 253'402'128'000;

std::time_t wholeSeconds(Date date) {
  const double seconds = std::floor(date.secondsSince1970());
  if (!(seconds > kFirst)) return static_cast<std::time_t>(kFirst);
  return static_cast<std::time_t>(std::min(seconds, kLast));
}

std::tm localTime(std::time_t time) {
  std::tm local{};
  ::localtime_r(&time, &local);
  return local;
}

auto dayOf(const std::tm& local) {
  return std::tuple(local.tm_year, local.tm_mon, local.tm_mday);
}

}  // namespace

Date SystemLocalCalendar::startOfDay(Date date) const {
  ::tzset();
  const std::time_t time = wholeSeconds(date);
  const std::tm local = localTime(time);
  const auto isEarlier = [&](std::time_t other) { return dayOf(localTime(other)) < dayOf(local); };
  std::tm midnight = local;
  midnight.tm_hour = midnight.tm_min = midnight.tm_sec = 0;
  midnight.tm_isdst = -1;
  const std::time_t guess = std::min(std::mktime(&midnight), time);
  if (!isEarlier(guess) && isEarlier(guess - 1)) return Date::since1970(static_cast<double>(guess));
  // A clock change at midnight: there is no such time, or there are two. No day has 28 hours.
  std::time_t before = time - 28 * 3600;
  std::time_t after = time;
  while (after - before > 1) {
    const std::time_t middle = before + (after - before) / 2;
    (isEarlier(middle) ? before : after) = middle;
  }
  return Date::since1970(static_cast<double>(after));
}

std::string SystemLocalCalendar::dayName(Date date) const {
  ::tzset();
  const std::tm local = localTime(wholeSeconds(date));
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  return text;
}

std::string SystemLocalCalendar::timeOfDay(Date date) const {
  ::tzset();
  const std::tm local = localTime(wholeSeconds(date));
  char text[24];
  std::snprintf(text, sizeof text, "%02d:%02d", local.tm_hour, local.tm_min);
  return text;
}

std::vector<LocalHour> SystemLocalCalendar::hoursOfDay(Date date) const {
  // Every time zone's offset, and every change of one, is a multiple of this.
  constexpr std::time_t kStep = 15 * 60;
  const Date start = startOfDay(date);
  std::time_t time = wholeSeconds(start);
  const std::tm first = localTime(time);
  std::vector<LocalHour> hours{{start, first.tm_hour}};
  for (std::tm local = first; dayOf(local) == dayOf(first); local = localTime(time += kStep)) {
    if (local.tm_hour == hours.back().hour) continue;
    hours.push_back({Date::since1970(static_cast<double>(time)), local.tm_hour});
  }
  return hours;
}

}  // namespace kestrel
