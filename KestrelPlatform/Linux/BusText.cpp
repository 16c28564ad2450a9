#include "KestrelPlatform/Linux/BusText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <system_error>

namespace kestrel {
namespace {

constexpr std::size_t kMaximumBytes = 256;

/// Bytes of the UTF-8 sequence that starts the text; 0 when it is malformed, overlong or a surrogate.
std::size_t sequenceLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  std::uint32_t value = lead & (0x7Fu >> length);
  for (const char c : text.substr(1, length - 1)) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) return 0;
    value = value << 6 | (byte & 0x3Fu);
  }
  constexpr std::array<std::uint32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
  const bool valid = value >= kSmallest[length] && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
  return valid ? length : 0;
}

}  // namespace

std::string busText(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t length = sequenceLength(text);
    const bool control =
        length == 1 && (static_cast<unsigned char>(text.front()) < 0x20 || text.front() == 0x7F);
    if (result.size() + std::max<std::size_t>(length, 1) > kMaximumBytes) break;
    result += length == 0 || control ? std::string_view("?") : text.substr(0, length);
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return result;
}

std::string busErrorText(const sd_bus_error& error) {
  const std::string_view name = error.name == nullptr ? "" : error.name;
  const std::string_view shortName = name.substr(name.find_last_of('.') + 1);
  const std::string message = busText(error.message == nullptr ? "" : error.message);
  if (shortName == "NoReply" || shortName == "Timeout") return "no answer";
  if (message.empty()) return busText(shortName);
  return shortName.empty() ? message : message + " (" + busText(shortName) + ")";
}

std::string busErrorText(int negativeErrno) {
  const std::string message = std::generic_category().message(-negativeErrno);
  return busErrorText(sd_bus_error{nullptr, message.c_str(), 0});
}

}  // namespace kestrel
