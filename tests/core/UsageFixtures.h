#pragma once

#include <gtest/gtest.h>
#include <string>

#include "KestrelCore/Support/Json.h"

namespace kestrel {

/// The keys of a sample, sorted and each followed by a blank, without which it still decodes. Each other one,
/// and a value of the wrong type under any of them, has to be refused.
template <typename Decoder>
std::string optionalKeys(const std::string& sample, Decoder decode) {
  const Json whole = parseJson(sample);
  std::string keys;
  for (const auto& [key, value] : whole.items()) {
    Json damaged = whole;
    damaged[key] = true;
    EXPECT_THROW(decode(damaged), DecodingError) << key;
    damaged.erase(key);
    try {
      decode(damaged);
      keys += key + " ";
    } catch (const DecodingError&) {  // It is required.
    }
  }
  return keys;
}

}  // namespace kestrel
