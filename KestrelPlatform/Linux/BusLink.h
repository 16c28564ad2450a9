#pragma once

#include <functional>
#include <memory>
#include <string>

#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Published.h"
#include "KestrelPlatform/Linux/SdBus.h"

namespace kestrel {

/// Keeps a connection to a bus: opens it, and opens it again after it was lost, waiting 1 s at first and up
/// to 30 s between attempts. Main thread only.
class BusLink {
 public:
  BusLink(SdBus::Which which, Executor& executor, Logger logger);

  /// The connection, which may still be opening; null while there is none. Valid until the next change.
  [[nodiscard]] SdBus* bus() const { return bus_.get(); }
  /// Why there is none, in words: "no system bus: Connection refused".
  [[nodiscard]] const std::string& problem() const { return problem_; }
  /// Calls back after a connection was begun or lost.
  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange) {
    return changed_.subscribe(std::move(onChange));
  }

 private:
  void open();
  void checkReady();
  void lose(const std::string& reason, bool retry);

  const SdBus::Which which_;
  Executor& executor_;
  const Logger logger_;
  Signal<> changed_;
  std::string problem_;
  double retryDelay_;
  RegistrationPtr timer_;
  std::unique_ptr<SdBus> bus_;
};

}  // namespace kestrel
