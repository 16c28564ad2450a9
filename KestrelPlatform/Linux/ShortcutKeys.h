#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace kestrel {

/// Where the keys of the shortcut are in the keyboard layout of the moment: the code of the key, and the bits
/// that stand for the others in an event's state. A keyboard without NumLock has 0 for it.
struct ShortcutKeys {
  xcb_keycode_t letter = 0;
  std::uint16_t alt = 0;
  std::uint16_t super = 0;
  std::uint16_t numLock = 0;

  /// Asks the display and waits. Absent, with the reason in words, when the layout lacks a key.
  static std::optional<ShortcutKeys> read(xcb_connection_t* connection, std::string& problem);

  /// The states that an event may have while the combination is pressed and nothing else.
  [[nodiscard]] std::vector<std::uint16_t> states() const;
  /// The state of an event as Kestrel's modifier flags.
  [[nodiscard]] std::uint64_t flags(std::uint16_t state) const;
};

}  // namespace kestrel
