#include "KestrelCore/Support/Uuid.h"

#include <cstdint>
#include <fmt/format.h>
#include <random>

namespace kestrel {
namespace {

std::mt19937_64 makeGenerator() {
  std::random_device source;
  std::seed_seq seed{source(), source(), source(), source(), source(), source(), source(), source()};
  return std::mt19937_64(seed);
}

}  // namespace

std::string randomUuid() {
  // The system's source takes microseconds for each number, and readers of logs need very many.
  thread_local std::mt19937_64 generate = makeGenerator();
  const std::uint64_t high = (generate() & 0xffff'ffff'ffff'0fffU) | 0x4000U;
  const std::uint64_t low = (generate() & 0x3fff'ffff'ffff'ffffU) | 0x8000'0000'0000'0000U;
  return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:012X}", high >> 32, (high >> 16) & 0xffff, high & 0xffff,
                     low >> 48, low & 0xffff'ffff'ffffU);
}

}  // namespace kestrel
