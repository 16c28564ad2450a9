#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// One request on the control socket: the words of a `kestrelctl` call, "pause" and "30m".
struct ControlRequest {
  static constexpr std::size_t kMaximumBytes = 64 * 1024;

  std::string command;
  std::vector<std::string> arguments;
};

/// The answer. Encoded as {"ok":true,"result":…} or {"ok":false,"error":"…"}.
struct ControlReply {
  static constexpr std::size_t kMaximumBytes = 8 * 1024 * 1024;

  /// Null after a failure; an empty object where there is nothing to tell.
  std::shared_ptr<const Json> result;
  /// In words, without a full stop; empty on success.
  std::string error;

  static ControlReply success(Json result);
  static ControlReply failure(std::string error);
  [[nodiscard]] bool ok() const { return result != nullptr; }
};

/// {"command":"pause","arguments":["30m"]}. Throws DecodingError; missing arguments are none.
ControlRequest decodeControlRequest(std::string_view bytes);
std::string encodeControlRequest(const ControlRequest& request);

/// Throws DecodingError.
ControlReply decodeControlReply(std::string_view bytes);
/// A reply that would be too large is replaced by a failure.
std::string encodeControlReply(const ControlReply& reply);

}  // namespace kestrel
