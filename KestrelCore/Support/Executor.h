#pragma once

#include <functional>
#include <memory>

namespace kestrel {

/// Something that lasts as long as this object: a timer, a watched descriptor, a subscription.
/// Destroying it on the thread that runs its callback guarantees that the callback is not called again;
/// on another thread one call already under way may still finish.
class Registration {
 public:
  virtual ~Registration() = default;
};

using RegistrationPtr = std::unique_ptr<Registration>;

/// Runs functions one after another on one thread. Delays are seconds of a clock that never jumps and that
/// does not advance while the machine sleeps.
class Executor {
 public:
  using Task = std::function<void()>;
  enum class Readiness { readable, writable };

  virtual ~Executor() = default;

  /// Runs the task later, in order of posting. From any thread.
  virtual void post(Task task) = 0;

  /// Runs the task once after a delay, unless the registration is gone by then. From any thread.
  [[nodiscard]] virtual RegistrationPtr after(double delaySeconds, Task task) = 0;

  /// Runs the task after `firstSeconds` and then at every interval; missed intervals are not made up.
  /// From any thread.
  [[nodiscard]] virtual RegistrationPtr repeat(double firstSeconds, double intervalSeconds, Task task) = 0;

  /// Runs the task whenever the descriptor is ready (level-triggered). The descriptor stays the caller's and
  /// is made non-blocking; end the registration before it is closed. Only from a task of this executor, or
  /// before it runs. Null when the descriptor cannot be watched.
  [[nodiscard]] virtual RegistrationPtr watch(int descriptor, Readiness readiness, Task task) = 0;
};

}  // namespace kestrel
