#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Platform/ProcessList.h"

namespace kestrel {

/// One application with a user interface.
struct RunningApplication {
  std::optional<std::string> localizedName;
  std::optional<std::string> bundleIdentifier;
  std::int32_t pid = 0;
};

/// The running applications with a user interface. Used from the process monitor's queue only.
class RunningApplications {
 public:
  virtual ~RunningApplications() = default;
  /// In the system's order. `processes` is the listing of the same moment (empty when there is none), for
  /// systems that know applications by their processes.
  [[nodiscard]] virtual std::vector<RunningApplication> list(const std::vector<ProcessRow>& processes) = 0;
};

}  // namespace kestrel
