#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "KestrelCore/Usage/SessionUsageRecord.h"
#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {

/// Decodes the JSON of the usage store's own files, fast and strictly: a required member that is missing, any
/// known member of a wrong type or given twice, and any malformed part throw DecodingError. Null counts as
/// absent, 15.0 as a whole number, and members that nobody knows are checked and ignored. What is handed out
/// is valid only during the call. Behind every text kPadding bytes must be readable, whatever they are. Not
/// thread-safe.
class UsageDecoder {
 public:
  static constexpr std::size_t kPadding = 64;

  UsageDecoder();
  ~UsageDecoder();
  UsageDecoder(const UsageDecoder&) = delete;
  UsageDecoder& operator=(const UsageDecoder&) = delete;

  /// One object.
  const UsageEvent& event(std::string_view text);
  /// An array of events.
  void events(std::string_view text, const std::function<void(const UsageEvent&)>& take);
  /// An object of session records by session id.
  void sessions(std::string_view text,
                const std::function<void(std::string_view sessionId, const SessionUsageRecord&)>& take);
  /// An array of strings.
  void strings(std::string_view text, const std::function<void(std::string_view)>& take);
  /// Any array or object.
  void check(std::string_view text);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kestrel
