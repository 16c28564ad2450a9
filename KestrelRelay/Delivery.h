#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "KestrelRelay/Deadline.h"

namespace kestrel {

struct DeliveryResult {
  /// Somebody listens there; the record is not to be sent anywhere else.
  bool connected = false;
  /// One line that says why the record was not acknowledged; empty when it was.
  std::string problem;
};

/// Writes the record to the socket and waits for the acknowledgement, both until the deadline. SIGPIPE must
/// be ignored.
[[nodiscard]] DeliveryResult deliver(const std::filesystem::path& socket, std::string_view record,
                                     const Deadline& deadline);

}  // namespace kestrel
