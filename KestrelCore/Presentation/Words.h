#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

// Figures as people read them.

/// "1,234,567".
std::string groupedDigits(std::int64_t number);
/// "78 %", of 0 to 100. Takes any double.
std::string percentWords(double percent);
/// "21 Nov" of "2026-11-21"; anything else as it is.
std::string shortDay(std::string_view dayName);
/// What is not empty, with " · " between.
std::string dotted(const std::vector<std::string>& parts);

}  // namespace kestrel
