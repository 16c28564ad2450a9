#include "KestrelCore/Presentation/Words.h"

#include <array>
#include <charconv>
#include <fmt/format.h>

#include "KestrelCore/Usage/WholePercent.h"

namespace kestrel {

std::string groupedDigits(std::int64_t number) {
  std::string text = fmt::format("{}", number);
  const std::size_t first = number < 0 ? 1 : 0;
  for (std::size_t at = text.size(); at > first + 3;) text.insert(at -= 3, ",");
  return text;
}

std::string percentWords(double percent) {
  return wholePercent(percent) + " %";
}

std::string shortDay(std::string_view dayName) {
  constexpr std::array<std::string_view, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  std::size_t month = 0;
  int day = 0;
  if (dayName.size() != 10) return std::string(dayName);
  std::from_chars(dayName.data() + 5, dayName.data() + 7, month);
  std::from_chars(dayName.data() + 8, dayName.data() + 10, day);
  if (month < 1 || month > kMonths.size()) return std::string(dayName);
  return fmt::format("{} {}", day, kMonths[month - 1]);
}

std::string dotted(const std::vector<std::string>& parts) {
  std::string text;
  for (const auto& part : parts) {
    if (!part.empty()) text += (text.empty() ? "" : " · ") + part;
  }
  return text;
}

}  // namespace kestrel
