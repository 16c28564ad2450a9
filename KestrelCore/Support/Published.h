#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// A list of subscribers that are called in order of subscription. For one thread, the main thread; a
/// subscriber may end its own or another subscription, or add one, while it is called.
template <typename... Arguments>
class Signal {
 public:
  using Callback = std::function<void(Arguments...)>;

  Signal() : entries_(std::make_shared<Entries>()) {}

  [[nodiscard]] RegistrationPtr subscribe(Callback callback) const {
    auto entry = std::make_shared<Callback>(std::move(callback));
    entries_->push_back(entry);
    return std::make_unique<Subscription>(entries_, entry);
  }

  void operator()(Arguments... arguments) const {
    const Entries snapshot = *entries_;
    for (const auto& weak : snapshot) {
      if (const auto callback = weak.lock()) (*callback)(arguments...);
    }
  }

 private:
  using Entries = std::vector<std::weak_ptr<Callback>>;

  class Subscription final : public Registration {
   public:
    Subscription(std::weak_ptr<Entries> entries, std::shared_ptr<Callback> callback)
        : entries_(std::move(entries)), callback_(std::move(callback)) {}
    ~Subscription() override {
      const auto entries = entries_.lock();
      if (entries) std::erase_if(*entries, [this](const auto& weak) { return weak.lock() == callback_; });
    }

   private:
    std::weak_ptr<Entries> entries_;
    std::shared_ptr<Callback> callback_;
  };

  std::shared_ptr<Entries> entries_;
};

/// A value that tells its subscribers when it was set to something different. For the main thread.
template <typename Value>
class Published {
 public:
  explicit Published(Value value = {}) : value_(std::move(value)) {}

  [[nodiscard]] const Value& get() const { return value_; }
  void set(Value value) {
    if (value_ == value) return;
    value_ = std::move(value);
    changed_(value_);
  }
  [[nodiscard]] RegistrationPtr subscribe(std::function<void(const Value&)> callback) const {
    return changed_.subscribe(std::move(callback));
  }

 private:
  Value value_;
  Signal<const Value&> changed_;
};

}  // namespace kestrel
