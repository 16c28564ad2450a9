#include "KestrelCore/Support/Utf8.h"

#include <cstddef>

namespace kestrel {
namespace {

unsigned byteAt(std::string_view bytes, std::size_t index) {
  return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U;
}

bool isContinuation(unsigned byte) {
  return (byte & 0xC0U) == 0x80U;
}

/// Length of the well-formed sequence at an index; 0 when there is none.
std::size_t sequenceLength(std::string_view bytes, std::size_t index) {
  const unsigned first = byteAt(bytes, index);
  const unsigned second = byteAt(bytes, index + 1);
  if (first < 0x80) return 1;
  if (first < 0xC2 || first > 0xF4 || !isContinuation(second)) return 0;
  if (first < 0xE0) return 2;
  const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool surrogateOrBeyond = (first == 0xED && second > 0x9F) || (first == 0xF4 && second > 0x8F);
  if (overlong || surrogateOrBeyond || !isContinuation(byteAt(bytes, index + 2))) return 0;
  if (first < 0xF0) return 3;
  return isContinuation(byteAt(bytes, index + 3)) ? 4 : 0;
}

/// The first index from `index` on where no well-formed sequence starts; the end when there is none.
std::size_t firstMalformed(std::string_view bytes, std::size_t index) {
  while (index < bytes.size()) {
    const std::size_t length = sequenceLength(bytes, index);
    if (length == 0) break;
    index += length;
  }
  return index;
}

}  // namespace

bool isUtf8(std::string_view bytes) {
  return firstMalformed(bytes, 0) == bytes.size();
}

void makeUtf8(std::string& bytes) {
  for (auto index = firstMalformed(bytes, 0); index < bytes.size(); index = firstMalformed(bytes, index)) {
    bytes[index] = '?';
  }
}

}  // namespace kestrel
