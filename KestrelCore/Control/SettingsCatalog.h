#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Settings/SettingsStore.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// Every setting by its key; `pauseUntil` is ISO 8601 or null. Main thread.
Json settingsReport(const SettingsStore& settings);

/// Sets one setting from a word: true or false (also on or off), a number, or for `pauseUntil` an ISO 8601
/// date or "none". Returns what is wrong, in words; absent on success. Main thread.
std::optional<std::string> setSetting(SettingsStore& settings, std::string_view key, std::string_view word);

}  // namespace kestrel
