#pragma once

#include <functional>
#include <optional>
#include <string>

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// The laptop's lid. Main thread only.
class LidSource {
 public:
  virtual ~LidSource() = default;
  /// Absent when the machine has no lid or does not tell.
  [[nodiscard]] virtual std::optional<bool> isClosed() = 0;
  /// Calls back on the main thread after a change. Null when changes cannot be observed.
  [[nodiscard]] virtual RegistrationPtr observe(std::function<void()> onChange) = 0;
  /// Where readings come from, for people; absent when there are none.
  [[nodiscard]] virtual std::optional<std::string> sourceName() const = 0;
};

}  // namespace kestrel
