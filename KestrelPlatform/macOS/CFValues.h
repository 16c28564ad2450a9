#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Support/Date.h"
#include "KestrelPlatform/macOS/CFRef.h"

namespace kestrel {

/// Never null: bytes that are not UTF-8 are taken as Latin-1.
CFRef<CFStringRef> makeCFString(std::string_view text);

// Readers of property-list values: absent for null and for a value of another type. Safe from any thread.

std::optional<std::string> stringValue(CFTypeRef value);
/// Only a Boolean object; the numbers 0 and 1 are none.
std::optional<bool> boolValue(CFTypeRef value);
/// Only a number that is stored as an integer and fits; 15.0 and a Boolean are none.
std::optional<std::int64_t> integerValue(CFTypeRef value);
/// Any finite number, whole or not.
std::optional<double> doubleValue(CFTypeRef value);
std::optional<Date> dateValue(CFTypeRef value);

}  // namespace kestrel
