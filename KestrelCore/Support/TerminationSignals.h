#pragma once

#include <functional>

#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

/// Turns the signals that ask a program to end into a callback on an executor. One object in a process at a
/// time; while it lives such a signal does nothing else. SIGHUP stays ignored where it was, as under nohup.
class TerminationSignals {
 public:
  /// `onSignal` may be called several times.
  TerminationSignals(Executor& executor, std::function<void()> onSignal);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

  /// False when signals keep their usual effect, for want of descriptors.
  [[nodiscard]] bool isActive() const { return registration_ != nullptr; }

 private:
  UniqueDescriptor readEnd_;
  UniqueDescriptor writeEnd_;
  RegistrationPtr registration_;
};

}  // namespace kestrel
