#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KestrelCore/Platform/LoginItem.h"

namespace kestrel {

/// A scripted login item, at first not registered; records the calls that change it.
class SimulatedLoginItem final : public LoginItem {
 public:
  [[nodiscard]] int status() override { return status_; }
  [[nodiscard]] std::optional<std::string> registerItem() override { return change("register", kEnabled); }
  [[nodiscard]] std::optional<std::string> unregisterItem() override {
    return change("unregister", kNotRegistered);
  }

  void set(int status) { status_ = status; }
  /// Makes changes fail, with this reason, or work again.
  void setFailure(std::optional<std::string> failure) { failure_ = std::move(failure); }
  [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }

 private:
  std::optional<std::string> change(const char* call, int status) {
    calls_.emplace_back(call);
    if (!failure_) status_ = status;
    return failure_;
  }

  int status_ = kNotRegistered;
  std::optional<std::string> failure_;
  std::vector<std::string> calls_;
};

}  // namespace kestrel
