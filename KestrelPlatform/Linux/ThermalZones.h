#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "KestrelPlatform/Linux/ThermalLevels.h"

namespace kestrel {

inline constexpr const char* kThermalRoot = "/sys/class/thermal";

/// The kernel's thermal zones that say at which temperatures it acts; others do not count. Main thread.
class ThermalZones {
 public:
  explicit ThermalZones(std::filesystem::path root) : root_(std::move(root)) { scan(); }

  /// Looks for zones and reads their trip points anew.
  void scan();
  /// Reads the temperatures; the hottest zone decides. Absent when no zone has anything to tell.
  [[nodiscard]] std::optional<int> readLevel();

 private:
  struct Zone {
    std::filesystem::path folder;
    ThermalEntries entries;
    int level = 0;
  };

  [[nodiscard]] int lastLevelOf(const std::filesystem::path& folder) const;

  const std::filesystem::path root_;
  std::vector<Zone> zones_;
};

}  // namespace kestrel
