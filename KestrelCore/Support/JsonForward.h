#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>

namespace kestrel {

using Json = nlohmann::json;

/// Deeper documents are refused: nothing that Kestrel reads comes near it.
inline constexpr std::size_t kMaximumJsonDepth = 64;

}  // namespace kestrel
