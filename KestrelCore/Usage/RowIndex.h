#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace kestrel {

/// Finds rows by the hash of a text that they do not store as such. The caller compares the text itself, so
/// that equal hashes of different texts do no harm. 11 to 21 bytes per row. Not thread-safe.
class RowIndex {
 public:
  using Position = std::uint32_t;

  static std::uint32_t hash(std::string_view text) {
    const std::uint64_t hash = std::hash<std::string_view>{}(text);
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
  }

  /// The first row added under the hash for which `matches(position)` holds.
  template <typename Matches>
  [[nodiscard]] std::optional<Position> find(std::uint32_t hash, const Matches& matches) const {
    if (slots_.empty()) return std::nullopt;
    for (std::size_t i = hash & mask(); slots_[i].position != kEmpty; i = (i + 1) & mask()) {
      if (slots_[i].hash == hash && matches(slots_[i].position)) return slots_[i].position;
    }
    return std::nullopt;
  }

  /// Makes room for so many rows.
  void reserve(std::size_t rows) {
    while (rows * 4 > slots_.size() * 3) grow();
  }

  void add(std::uint32_t hash, Position position) {
    reserve(count_ + 1);
    place({hash, position});
    ++count_;
  }

 private:
  static constexpr Position kEmpty = ~Position{0};
  struct Slot {
    std::uint32_t hash = 0;
    Position position = kEmpty;
  };

  [[nodiscard]] std::size_t mask() const { return slots_.size() - 1; }
  void place(Slot slot) {
    std::size_t i = slot.hash & mask();
    while (slots_[i].position != kEmpty) i = (i + 1) & mask();
    slots_[i] = slot;
  }
  void grow() {
    std::vector<Slot> old(slots_.empty() ? 16 : slots_.size() * 2);
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.position != kEmpty) place(slot);
    }
  }

  /// A power of two, at most three quarters full.
  std::vector<Slot> slots_;
  std::size_t count_ = 0;
};

}  // namespace kestrel
