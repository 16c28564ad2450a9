#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kestrel {

/// A message to the person in front of the machine. One with the identifier of an earlier one takes its
/// place. Plain text without '<', '>' and '&', which some systems take for markup.
struct UserNotification {
  std::string identifier;
  std::string title;
  std::string body;

  friend bool operator==(const UserNotification&, const UserNotification&) = default;
};

/// The system's centre for notifications. Main thread only; never waits for the centre. Callbacks are called
/// once at most, on any thread.
class UserNotifications {
 public:
  // What a program asks to be allowed, one bit each.
  static constexpr std::uint32_t kBadge = 1;
  static constexpr std::uint32_t kSound = 2;
  static constexpr std::uint32_t kAlert = 4;

  struct Authorization {
    bool isGranted = false;
    /// Why the question could not be answered, in words.
    std::optional<std::string> error;
  };

  virtual ~UserNotifications() = default;

  /// Whether there is a centre for this program now; without one the other functions must not be called.
  [[nodiscard]] virtual bool isAvailable() = 0;
  /// Asks for what the bits say; where nobody is asked, it is granted.
  virtual void requestAuthorization(std::uint32_t options, std::function<void(Authorization)> completion) = 0;
  /// Shows it now, with the system's sound for notifications. `onFailure` gets the reason in words.
  virtual void post(const UserNotification& notification, std::function<void(std::string)> onFailure) = 0;
};

}  // namespace kestrel
