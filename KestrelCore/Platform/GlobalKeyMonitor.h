#pragma once

#include <cstdint>
#include <functional>

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// A key that went down.
struct KeyPress {
  // Bits of `modifierFlags`.
  static constexpr std::uint64_t kCapsLock = 0x10000;
  static constexpr std::uint64_t kShift = 0x20000;
  static constexpr std::uint64_t kControl = 0x40000;
  /// Alt on other keyboards.
  static constexpr std::uint64_t kOption = 0x80000;
  /// Super, or the logo key, on other keyboards.
  static constexpr std::uint64_t kCommand = 0x100000;
  /// The key with the letter L.
  static constexpr std::uint16_t kKeyL = 37;

  std::uint16_t keyCode = 0;
  std::uint64_t modifierFlags = 0;
};

/// The keyboard. Nothing is asked of the system before the first monitor is added. Main thread only. A
/// monitor is null when the system refuses it or has none; the backend says why in the log. Handlers may end
/// their own monitor.
class GlobalKeyMonitor {
 public:
  virtual ~GlobalKeyMonitor() = default;
  /// Sees keys that are pressed while another program is in front; they reach that program too. A system that
  /// has to be told the keys beforehand shows those of Kestrel's shortcut alone, whoever is in front, and
  /// nobody else gets them.
  [[nodiscard]] virtual RegistrationPtr addGlobal(std::function<void(const KeyPress&)> handler) = 0;
  /// Sees keys that are pressed while this program is in front, unless the global monitor sees them as well;
  /// a handler that returns true consumes the key.
  [[nodiscard]] virtual RegistrationPtr addLocal(std::function<bool(const KeyPress&)> handler) = 0;
};

}  // namespace kestrel
