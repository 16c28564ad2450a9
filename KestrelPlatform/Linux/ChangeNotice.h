#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Published.h"

namespace kestrel {

/// Tells observers that a reading changed. Who begins to observe when the last change was not read yet,
/// because it came between the reading and the observation, is told of it too. Main thread.
class ChangeNotice {
 public:
  explicit ChangeNotice(Executor& executor) : executor_(executor), changed_(std::make_shared<Signal<>>()) {}

  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange) {
    RegistrationPtr registration = changed_->subscribe(std::move(onChange));
    if (isUnread_) {
      executor_.post([weak = std::weak_ptr(changed_)] {
        if (const auto changed = weak.lock()) (*changed)();
      });
    }
    return registration;
  }
  void tell() {
    isUnread_ = true;
    (*changed_)();
  }
  void markRead() { isUnread_ = false; }

 private:
  Executor& executor_;
  const std::shared_ptr<Signal<>> changed_;
  bool isUnread_ = false;
};

}  // namespace kestrel
