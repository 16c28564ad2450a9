#pragma once

#include <string>
#include <string_view>

#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

// What Kestrel answers, as text for people: lines, each ended. A report of another version of Kestrel may
// lack anything and carry more; what is missing reads as unknown. Nothing here throws on any JSON.

/// The answer to `status`; the first line is its status description.
std::string statusText(const Json& report, Date now);

/// The answer to `sessions`, one line each.
std::string sessionsText(const Json& report, Date now);

/// The answer to `settings list`, "key = value" on one line each.
std::string settingsText(const Json& settings);

/// The answer to `doctor`: a line for each capability, and under it what to do.
std::string doctorText(const Json& report);

/// The answer to `why`: Kestrel's own hold, then everything that the system knows of.
std::string whyText(const Json& report);

/// The privileged helper's part of a status.
std::string helperText(const Json& helper, Date now);

/// The answer to any other command: its status description, or the bare value of one setting.
std::string changeText(const Json& result);

/// Texts from outside, which must neither begin a line of their own nor steer a terminal.
std::string printable(std::string_view text);

}  // namespace kestrel
