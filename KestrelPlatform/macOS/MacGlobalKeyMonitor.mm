#include <AppKit/AppKit.h>

#include <utility>

#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

static_assert(KeyPress::kOption == NSEventModifierFlagOption);
static_assert(KeyPress::kCommand == NSEventModifierFlagCommand);

KeyPress keyOf(NSEvent* event) {
  return {event.keyCode, event.modifierFlags};
}

/// The system's token for a monitor, given back at the end.
class KeyMonitoring final : public Registration {
 public:
  explicit KeyMonitoring(id token) : token_(token) {}
  ~KeyMonitoring() override { [NSEvent removeMonitor:token_]; }
  KeyMonitoring(const KeyMonitoring&) = delete;
  KeyMonitoring& operator=(const KeyMonitoring&) = delete;

 private:
  const id token_;
};

RegistrationPtr monitoring(id token) {
  return token != nil ? std::make_unique<KeyMonitoring>(token) : nullptr;
}

/// The system calls both on the main thread. A handler may end its own monitor, and the block that owns it.
class MacGlobalKeyMonitor final : public GlobalKeyMonitor {
 public:
  RegistrationPtr addGlobal(std::function<void(const KeyPress&)> handler) override {
    return monitoring([NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                             handler:^(NSEvent* event) {
                                                               const auto kept = handler;
                                                               kept(keyOf(event));
                                                             }]);
  }

  RegistrationPtr addLocal(std::function<bool(const KeyPress&)> handler) override {
    return monitoring([NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                            handler:^NSEvent*(NSEvent* event) {
                                                              const auto kept = handler;
                                                              return kept(keyOf(event)) ? nil : event;
                                                            }]);
  }
};

}  // namespace

std::unique_ptr<GlobalKeyMonitor> makeMacGlobalKeyMonitor() {
  return std::make_unique<MacGlobalKeyMonitor>();
}

}  // namespace kestrel
