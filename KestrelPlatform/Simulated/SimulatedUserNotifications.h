#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KestrelCore/Platform/UserNotifications.h"

namespace kestrel {

/// Records what was asked and posted. At first there is a centre, which grants and shows everything.
class SimulatedUserNotifications final : public UserNotifications {
 public:
  [[nodiscard]] bool isAvailable() override { return isAvailable_; }
  void requestAuthorization(std::uint32_t options, std::function<void(Authorization)> completion) override {
    requests_.push_back(options);
    completion(answer_);
  }
  void post(const UserNotification& notification, std::function<void(std::string)> onFailure) override {
    if (failure_) return onFailure(*failure_);
    posted_.push_back(notification);
  }

  void setAvailable(bool isAvailable) { isAvailable_ = isAvailable; }
  void setAnswer(Authorization answer) { answer_ = std::move(answer); }
  /// Makes posting fail, with this reason, or work again.
  void setFailure(std::optional<std::string> failure) { failure_ = std::move(failure); }
  /// The options of each request.
  [[nodiscard]] const std::vector<std::uint32_t>& requests() const { return requests_; }
  [[nodiscard]] const std::vector<UserNotification>& posted() const { return posted_; }

 private:
  bool isAvailable_ = true;
  Authorization answer_{true, std::nullopt};
  std::optional<std::string> failure_;
  std::vector<std::uint32_t> requests_;
  std::vector<UserNotification> posted_;
};

}  // namespace kestrel
