#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "KestrelCore/Platform/ProcessList.h"

namespace kestrel {

/// Reads what `ps -axo pid,command` prints: a pid, blanks, and the rest of the line. Lines without a pid,
/// such as the heading, are skipped. Absent when the text is not UTF-8.
std::optional<std::vector<ProcessRow>> parseProcessListing(std::string_view text);

}  // namespace kestrel
