#pragma once

#include <filesystem>
#include <optional>

#include "KestrelCore/Platform/PowerSource.h"

namespace kestrel {

inline constexpr const char* kPowerSupplyRoot = "/sys/class/power_supply";

/// The machine's own batteries and mains adapters as the kernel shows them, several batteries as one; those
/// of mice and the like are left out. Absent when there are neither.
std::optional<PowerSource::List> readPowerSupplies(const std::filesystem::path& root);

}  // namespace kestrel
