#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <systemd/sd-bus.h>
#include <variant>

namespace kestrel {

using BusValue = std::variant<bool, std::int64_t, double, std::string>;

/// Properties by name. Integers of every size are 64 bits wide; what is no plain value is left out.
using BusValues = std::map<std::string, BusValue, std::less<>>;

/// Absent when there is no such property or it is of another type.
template <typename Type>
std::optional<Type> valueOf(const BusValues& values, std::string_view name) {
  const auto found = values.find(name);
  if (found == values.end()) return std::nullopt;
  const Type* value = std::get_if<Type>(&found->second);
  return value == nullptr ? std::nullopt : std::optional<Type>(*value);
}

/// Reads the variant that comes next. Absent when it is no plain value; negative in `status` when the message
/// is not what it should be.
std::optional<BusValue> readBusVariant(sd_bus_message* message, int& status);

/// Reads a dictionary of variants. Absent when the message holds something else.
std::optional<BusValues> readBusDictionary(sd_bus_message* message);

}  // namespace kestrel
