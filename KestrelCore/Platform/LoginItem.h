#pragma once

#include <optional>
#include <string>

namespace kestrel {

/// This program among those that the system starts when the user logs in. Main thread only.
class LoginItem {
 public:
  // What `status` answers; a system may know more.
  static constexpr int kNotRegistered = 0;
  static constexpr int kEnabled = 1;
  static constexpr int kRequiresApproval = 2;
  static constexpr int kNotFound = 3;

  virtual ~LoginItem() = default;
  /// Asks the system each time.
  [[nodiscard]] virtual int status() = 0;
  // Absent on success, else the reason in words.
  [[nodiscard]] virtual std::optional<std::string> registerItem() = 0;
  [[nodiscard]] virtual std::optional<std::string> unregisterItem() = 0;
};

}  // namespace kestrel
