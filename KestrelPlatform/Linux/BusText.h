#pragma once

#include <string>
#include <string_view>
#include <systemd/sd-bus.h>

namespace kestrel {

/// Text as a bus accepts it, at most 256 bytes: what is not UTF-8, and control characters, become '?'. A bus
/// disconnects a program that sends anything else.
std::string busText(std::string_view text);

/// A bus error in words, with its short name. The only place where such errors become text.
std::string busErrorText(const sd_bus_error& error);
/// The same for a negative errno, as every function of the bus library returns it.
std::string busErrorText(int negativeErrno);

}  // namespace kestrel
