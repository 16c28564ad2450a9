#pragma once

#include <string>

namespace kestrel {

// Durations for people, from seconds. What is negative or not a number counts as 0.

/// Where each second is shown: "12 min 04 s", "2 h 10 min", "9 s".
std::string durationText(double seconds);

/// The nearest in one unit, where a moment more or less does not matter: "40 s", "12 min", "2 h", "3 d".
std::string roughDurationText(double seconds);

/// "just now", "40 s ago", "3 d ago".
std::string agoText(double seconds);

}  // namespace kestrel
