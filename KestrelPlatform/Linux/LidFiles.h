#pragma once

#include <filesystem>
#include <optional>

namespace kestrel {

inline constexpr const char* kLidButtonRoot = "/proc/acpi/button/lid";
inline constexpr const char* kInputRoot = "/sys/class/input";

/// Whether the firmware's lid button is closed; absent when there is none or it does not tell.
std::optional<bool> readLidButton(const std::filesystem::path& root);

/// Whether one of the input devices is a lid switch. Its position cannot be read here by everybody.
bool hasLidSwitch(const std::filesystem::path& inputRoot);

}  // namespace kestrel
