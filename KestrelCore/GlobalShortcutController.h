#pragma once

#include <functional>
#include <memory>

#include "KestrelCore/Platform/GlobalKeyMonitor.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// Watches for Option+Command+L (Alt+Super+L), whoever is in front. Further modifiers do not matter. Main
/// thread.
class GlobalShortcutController {
 public:
  /// The monitor outlives the controller.
  GlobalShortcutController(GlobalKeyMonitor& monitor, std::shared_ptr<LogSink> sink);

  /// Called on the main thread at each press.
  void setOnToggleRequested(std::function<void()> callback) { onToggleRequested_ = std::move(callback); }
  /// Monitors that the system refuses stay absent.
  void start();
  void stop();
  [[nodiscard]] bool isMonitoring() const { return globalMonitor_ != nullptr || localMonitor_ != nullptr; }

 private:
  /// Whether the key was the shortcut.
  bool handle(const KeyPress& key, const char* origin) const;

  GlobalKeyMonitor& monitor_;
  const Logger logger_;
  RegistrationPtr globalMonitor_;
  RegistrationPtr localMonitor_;
  std::function<void()> onToggleRequested_;
};

}  // namespace kestrel
