#pragma once

#include <functional>
#include <optional>
#include <string>

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// The machine's thermal pressure. Main thread only.
class ThermalSource {
 public:
  virtual ~ThermalSource() = default;
  /// 0 nominal, 1 fair, 2 serious, 3 critical; 0 also when unknown.
  [[nodiscard]] virtual int level() = 0;
  /// Calls back on the main thread after a change. Null when changes cannot be observed.
  [[nodiscard]] virtual RegistrationPtr observe(std::function<void()> onChange) = 0;
  /// Where readings come from, for people; absent when there are none.
  [[nodiscard]] virtual std::optional<std::string> sourceName() const = 0;
};

}  // namespace kestrel
