#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// Reads "90s", "30m", "2h", "1h30m"; a bare number is minutes. In seconds, more than 0 and at most a year;
/// absent when the text is anything else.
std::optional<double> parseDuration(std::string_view text);

/// "1 h 30 min", "12 min 04 s", "9 s": for people. Negative counts as 0.
std::string formatDuration(double seconds);

}  // namespace kestrel
