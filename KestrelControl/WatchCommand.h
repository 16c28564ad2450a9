#pragma once

#include <functional>
#include <optional>
#include <string>

namespace kestrel {

/// What is to be shown now; absent when there is nobody to ask, which has been said.
using WatchedText = std::function<std::optional<std::string>()>;

/// Shows a text anew each second: on a terminal in the place of the one before, elsewhere whenever it has
/// changed. Ends when there is no text any more, or nobody reads it; false in the former case.
[[nodiscard]] bool watch(const WatchedText& text);

}  // namespace kestrel
