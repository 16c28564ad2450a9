#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <utility>

namespace kestrel {

/// Owns one reference to a Core Foundation object. For what "Create" and "Copy" functions return; never for
/// what a "Get" function returns.
template <typename Ref>
class CFRef {
 public:
  CFRef() = default;
  explicit CFRef(Ref owned __attribute__((cf_consumed))) : object_(owned) {}
  CFRef(CFRef&& other) noexcept : object_(other.release()) {}
  CFRef& operator=(CFRef&& other) noexcept {
    if (this != &other) {
      reset();
      object_ = other.release();
    }
    return *this;
  }
  ~CFRef() { reset(); }

  [[nodiscard]] Ref get() const __attribute__((cf_returns_not_retained)) { return object_; }
  [[nodiscard]] explicit operator bool() const { return object_ != nullptr; }
  /// Hands the reference to the caller, for `__bridge_transfer`.
  [[nodiscard]] Ref release() __attribute__((cf_returns_retained)) { return std::exchange(object_, nullptr); }

 private:
  void reset() {
    if (object_ != nullptr) CFRelease(object_);
    object_ = nullptr;
  }

  Ref object_ = nullptr;
};

}  // namespace kestrel
