#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace kestrel {

/// Whether any of a few short texts that begin with the same character stands in a long one. Compares three
/// characters of each in one pass over blocks, without a branch within a block, so that the compiler can
/// vectorise it; what looks promising is searched properly.
template <std::size_t Count, std::size_t kThird>
class SubstringFilter {
 public:
  /// Each of more than kThird bytes.
  explicit constexpr SubstringFilter(const std::array<std::string_view, Count>& needles)
      : needles_(needles) {}

  [[nodiscard]] bool matches(std::string_view text) const {
    std::size_t at = 0;
    for (; at + kBlock + kThird <= text.size(); at += kBlock) {
      if (mayBegin(text.data() + at) && beginsWithin(text.substr(at), kBlock)) return true;
    }
    return beginsWithin(text.substr(at), text.size() - at);
  }

 private:
  static constexpr std::size_t kBlock = 128;

  [[nodiscard]] bool mayBegin(const char* block) const {
    const auto same = [block](std::size_t at, char wanted) {
      return static_cast<unsigned char>(block[at] == wanted);
    };
    unsigned char found = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
      unsigned char rest = 0;
      for (const auto needle : needles_) rest |= same(i + 1, needle[1]) & same(i + kThird, needle[kThird]);
      found |= rest & same(i, needles_[0][0]);
    }
    return found != 0;
  }

  /// Whether one begins within so many bytes.
  [[nodiscard]] bool beginsWithin(std::string_view text, std::size_t bytes) const {
    for (const auto needle : needles_) {
      if (text.substr(0, bytes + needle.size() - 1).find(needle) != std::string_view::npos) return true;
    }
    return false;
  }

  std::array<std::string_view, Count> needles_;
};

}  // namespace kestrel
