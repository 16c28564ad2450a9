#include "KestrelPlatform/macOS/CFValues.h"

#include <cmath>

namespace kestrel {

namespace {

CFRef<CFStringRef> decode(std::string_view text, CFStringEncoding encoding) {
  const auto* bytes = reinterpret_cast<const UInt8*>(text.data());
  const auto length = static_cast<CFIndex>(text.size());
  return CFRef<CFStringRef>(CFStringCreateWithBytes(kCFAllocatorDefault, bytes, length, encoding, false));
}

bool isOfType(CFTypeRef value, CFTypeID type) {
  return value != nullptr && CFGetTypeID(value) == type;
}

}  // namespace

CFRef<CFStringRef> makeCFString(std::string_view text) {
  auto string = decode(text, kCFStringEncodingUTF8);
  return string ? std::move(string) : decode(text, kCFStringEncodingISOLatin1);
}

std::optional<std::string> stringValue(CFTypeRef value) {
  if (!isOfType(value, CFStringGetTypeID())) return std::nullopt;
  const auto string = static_cast<CFStringRef>(value);
  const CFRange all = CFRangeMake(0, CFStringGetLength(string));
  constexpr UInt8 kLossByte = '?';
  CFIndex size = 0;
  CFStringGetBytes(string, all, kCFStringEncodingUTF8, kLossByte, false, nullptr, 0, &size);
  std::string text(static_cast<std::size_t>(size), '\0');
  auto* buffer = reinterpret_cast<UInt8*>(text.data());
  CFStringGetBytes(string, all, kCFStringEncodingUTF8, kLossByte, false, buffer, size, nullptr);
  return text;
}

std::optional<bool> boolValue(CFTypeRef value) {
  if (!isOfType(value, CFBooleanGetTypeID())) return std::nullopt;
  return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
}

std::optional<std::int64_t> integerValue(CFTypeRef value) {
  if (!isOfType(value, CFNumberGetTypeID())) return std::nullopt;
  const auto number = static_cast<CFNumberRef>(value);
  std::int64_t integer = 0;
  if (CFNumberIsFloatType(number) || !CFNumberGetValue(number, kCFNumberSInt64Type, &integer)) {
    return std::nullopt;
  }
  return integer;
}

std::optional<double> doubleValue(CFTypeRef value) {
  if (!isOfType(value, CFNumberGetTypeID())) return std::nullopt;
  double number = 0;
  // The result tells of lost precision only: a whole number above 2^53 is still a valid double.
  CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberDoubleType, &number);
  if (!std::isfinite(number)) return std::nullopt;
  return number;
}

std::optional<Date> dateValue(CFTypeRef value) {
  if (!isOfType(value, CFDateGetTypeID())) return std::nullopt;
  return Date::sinceReferenceDate(CFDateGetAbsoluteTime(static_cast<CFDateRef>(value)));
}

}  // namespace kestrel
