#include "KestrelPlatform/Linux/ShortcutKeys.h"

#include <X11/keysym.h>
#include <algorithm>
#include <initializer_list>
#include <span>

#include "KestrelCore/Platform/GlobalKeyMonitor.h"
#include "KestrelPlatform/Linux/XcbMemory.h"

namespace kestrel {
namespace {

constexpr std::size_t kModifiers = 8;

/// The display's two tables: what each key means, and which keys each modifier has.
class KeyboardLayout {
 public:
  explicit KeyboardLayout(xcb_connection_t* connection) {
    const xcb_setup_t* setup = xcb_get_setup(connection);
    first_ = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto keysCookie = xcb_get_keyboard_mapping(connection, first_, count);
    const auto modifiersCookie = xcb_get_modifier_mapping(connection);
    keys_.reset(xcb_get_keyboard_mapping_reply(connection, keysCookie, nullptr));
    modifiers_.reset(xcb_get_modifier_mapping_reply(connection, modifiersCookie, nullptr));
  }

  [[nodiscard]] bool isRead() const { return keys_ && modifiers_ && keys_->keysyms_per_keycode > 0; }

  /// The key that means it at the lowest level; 0 when none does.
  [[nodiscard]] xcb_keycode_t keyOf(xcb_keysym_t symbol) const {
    const auto all = symbols();
    const std::size_t width = keys_->keysyms_per_keycode;
    for (std::size_t level = 0; level < width; ++level) {
      for (std::size_t i = level; i < all.size(); i += width) {
        if (all[i] == symbol) return static_cast<xcb_keycode_t>(first_ + i / width);
      }
    }
    return 0;
  }

  /// The bit of the first modifier that has a key of one of the meanings; 0 when none has.
  [[nodiscard]] std::uint16_t modifierOf(std::initializer_list<xcb_keysym_t> symbols) const {
    const xcb_keycode_t* keys = xcb_get_modifier_mapping_keycodes(modifiers_.get());
    const std::size_t width = modifiers_->keycodes_per_modifier;
    for (std::size_t i = 0; i < kModifiers * width; ++i) {
      const auto meanings = symbolsOf(keys[i]);
      if (std::ranges::find_first_of(meanings, symbols) != meanings.end())
        return static_cast<std::uint16_t>(1U << (i / width));
    }
    return 0;
  }

 private:
  [[nodiscard]] std::span<const xcb_keysym_t> symbols() const {
    return {xcb_get_keyboard_mapping_keysyms(keys_.get()),
            static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(keys_.get()))};
  }
  [[nodiscard]] std::span<const xcb_keysym_t> symbolsOf(xcb_keycode_t key) const {
    const std::size_t width = keys_->keysyms_per_keycode;
    const std::size_t start = key < first_ ? symbols().size() : (key - first_) * width;
    return start + width <= symbols().size() ? symbols().subspan(start, width)
                                             : std::span<const xcb_keysym_t>();
  }

  xcb_keycode_t first_ = 0;
  XcbPtr<xcb_get_keyboard_mapping_reply_t> keys_;
  XcbPtr<xcb_get_modifier_mapping_reply_t> modifiers_;
};

}  // namespace

std::optional<ShortcutKeys> ShortcutKeys::read(xcb_connection_t* connection, std::string& problem) {
  const KeyboardLayout layout(connection);
  problem = "the display does not tell the keyboard's layout";
  if (!layout.isRead()) return std::nullopt;
  ShortcutKeys keys;
  keys.letter = layout.keyOf(XK_l);
  keys.alt = layout.modifierOf({XK_Alt_L, XK_Alt_R});
  keys.super = layout.modifierOf({XK_Super_L, XK_Super_R});
  keys.numLock = layout.modifierOf({XK_Num_Lock});
  problem = "the keyboard's layout lacks one of the keys";
  if (keys.letter == 0 || keys.alt == 0 || keys.super == 0) return std::nullopt;
  return keys;
}

std::vector<std::uint16_t> ShortcutKeys::states() const {
  const auto plain = static_cast<std::uint16_t>(alt | super);
  std::vector<std::uint16_t> states{plain, static_cast<std::uint16_t>(plain | XCB_MOD_MASK_LOCK)};
  if (numLock == 0) return states;
  for (const std::uint16_t state : {states[0], states[1]})
    states.push_back(static_cast<std::uint16_t>(state | numLock));
  return states;
}

std::uint64_t ShortcutKeys::flags(std::uint16_t state) const {
  return ((state & alt) != 0 ? KeyPress::kOption : 0) | ((state & super) != 0 ? KeyPress::kCommand : 0) |
         ((state & XCB_MOD_MASK_SHIFT) != 0 ? KeyPress::kShift : 0) |
         ((state & XCB_MOD_MASK_CONTROL) != 0 ? KeyPress::kControl : 0) |
         ((state & XCB_MOD_MASK_LOCK) != 0 ? KeyPress::kCapsLock : 0);
}

}  // namespace kestrel
