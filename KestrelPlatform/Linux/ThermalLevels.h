#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kestrel {

// How hot a machine is, from the temperatures at which its kernel acts. Degrees Celsius throughout; levels
// are 0 nominal, 1 fair, 2 serious, 3 critical.

struct ThermalTrip {
  /// The kernel's word: "critical", "hot", "passive", "active".
  std::string type;
  double celsius = 0;
};

/// Where the levels of one zone begin.
struct ThermalEntries {
  double fair = 0;
  double serious = 0;
  /// Infinite where nothing tells.
  double critical = 0;
};

/// False for what sensors report when they have nothing to report.
bool isPlausibleTemperature(double celsius);

/// Absent when no trip point is of use.
std::optional<ThermalEntries> thermalEntries(const std::vector<ThermalTrip>& trips);

/// A level is entered at its temperature and left 5 degrees below.
int thermalLevel(const ThermalEntries& entries, double celsius, int previousLevel);

/// Keeps short spikes, which a boosting processor has all the time, from counting as serious: the two upper
/// levels are entered only after 10 seconds at serious or above. Falling counts at once.
class ThermalRise {
 public:
  /// The level to report for the one just read, `elapsedSeconds` after the one before.
  int update(int level, double elapsedSeconds);

 private:
  int reported_ = 0;
  int last_ = 0;
  double secondsHot_ = 0;
};

}  // namespace kestrel
