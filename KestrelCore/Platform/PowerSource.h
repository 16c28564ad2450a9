#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// One power source as the system describes it; what it does not say is absent.
struct PowerSourceDescription {
  /// "AC Power" or "Battery Power".
  std::optional<std::string> powerSourceState;
  std::optional<bool> isCharging;
  /// In the unit of `maxCapacity`.
  std::optional<std::int64_t> currentCapacity;
  std::optional<std::int64_t> maxCapacity;
  /// Minutes; -1 while it is being estimated.
  std::optional<std::int64_t> timeToEmpty;
};

/// The machine's power sources. Main thread only.
class PowerSource {
 public:
  /// In the system's order; an entry is absent when the system lists a source without describing it.
  using List = std::vector<std::optional<PowerSourceDescription>>;

  virtual ~PowerSource() = default;
  /// Absent when there is no power-source information at all.
  [[nodiscard]] virtual std::optional<List> read() = 0;
  /// Calls back on the main thread after a change. Null when changes cannot be observed.
  [[nodiscard]] virtual RegistrationPtr observe(std::function<void()> onChange) = 0;
  /// Where readings come from, for people; absent when there are none.
  [[nodiscard]] virtual std::optional<std::string> sourceName() const = 0;
};

/// The system's Low Power Mode. Main thread only.
class LowPowerMode {
 public:
  virtual ~LowPowerMode() = default;
  /// False where the system has no such mode.
  [[nodiscard]] virtual bool isEnabled() = 0;
};

}  // namespace kestrel
