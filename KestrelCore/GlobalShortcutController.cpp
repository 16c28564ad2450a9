#include "KestrelCore/GlobalShortcutController.h"

#include <utility>

namespace kestrel {
namespace {

bool isShortcut(const KeyPress& key) {
  constexpr std::uint64_t kModifiers = KeyPress::kOption | KeyPress::kCommand;
  return key.keyCode == KeyPress::kKeyL && (key.modifierFlags & kModifiers) == kModifiers;
}

}  // namespace

GlobalShortcutController::GlobalShortcutController(GlobalKeyMonitor& monitor, std::shared_ptr<LogSink> sink)
    : monitor_(monitor), logger_(std::move(sink), "shortcut") {}

void GlobalShortcutController::start() {
  if (isMonitoring()) return;
  globalMonitor_ = monitor_.addGlobal([this](const KeyPress& key) { (void)handle(key, "Global"); });
  localMonitor_ = monitor_.addLocal([this](const KeyPress& key) { return handle(key, "Local"); });
  if (isMonitoring()) logger_.info("Global shortcut monitor registered for Option+Command+L");
}

void GlobalShortcutController::stop() {
  globalMonitor_.reset();
  localMonitor_.reset();
}

bool GlobalShortcutController::handle(const KeyPress& key, const char* origin) const {
  if (!isShortcut(key)) return false;
  logger_.info("{} shortcut Option+Command+L triggered", origin);
  const auto callback = onToggleRequested_;  // It may end the monitors, and with them this call's owner.
  if (callback) callback();
  return true;
}

}  // namespace kestrel
