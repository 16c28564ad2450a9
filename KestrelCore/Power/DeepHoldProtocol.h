#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Power/DeepSleepStatus.h"
#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

/// What the privileged helper can be asked.
enum class HelperCommand { status, acquire, renew, release, uninstall };
template <>
struct RawValues<HelperCommand> {
  static constexpr std::array<std::string_view, 5> table{"status", "acquire", "renew", "release",
                                                         "uninstall"};
};

/// One request to the helper; a connection carries one, without a line feed or a length.
struct HelperRequest {
  static constexpr std::size_t kMaximumBytes = 8192;

  HelperCommand command = HelperCommand::status;
  /// Names the holder; an upper-case UUID.
  std::optional<std::string> leaseId;
  std::optional<double> ttlSeconds;

  friend bool operator==(const HelperRequest&, const HelperRequest&) = default;
};

/// The helper's answer.
struct HelperResponse {
  static constexpr std::size_t kMaximumBytes = 8192;

  bool ok = false;
  std::optional<DeepSleepStatus> status;
  /// For people.
  std::optional<std::string> error;

  friend bool operator==(const HelperResponse&, const HelperResponse&) = default;
};

/// Compact JSON. Absent when a number has no JSON form.
std::optional<std::string> encodeHelperRequest(const HelperRequest& request);
/// Throws DecodingError; unknown keys are ignored.
HelperRequest decodeHelperRequest(std::string_view bytes);

std::string encodeHelperResponse(const HelperResponse& response);
/// Throws DecodingError; unknown keys are ignored.
HelperResponse decodeHelperResponse(std::string_view bytes);

}  // namespace kestrel
