#pragma once

#include <utility>

#include "KestrelCore/Platform/GlobalKeyMonitor.h"
#include "KestrelCore/Support/Published.h"

namespace kestrel {

/// A keyboard to be pressed by a script, on a system that grants both monitors at first.
class SimulatedGlobalKeyMonitor final : public GlobalKeyMonitor {
 public:
  [[nodiscard]] RegistrationPtr addGlobal(std::function<void(const KeyPress&)> handler) override {
    return grants_ ? elsewhere_.subscribe(std::move(handler)) : nullptr;
  }
  [[nodiscard]] RegistrationPtr addLocal(std::function<bool(const KeyPress&)> handler) override {
    if (!grants_) return nullptr;
    return here_.subscribe([handler = std::move(handler)](const KeyPress& key, bool& isConsumed) {
      isConsumed = handler(key) || isConsumed;
    });
  }

  /// Whether monitors that are added from now on are granted.
  void setGrants(bool grants) { grants_ = grants; }
  /// While another program is in front.
  void pressElsewhere(const KeyPress& key) const { elsewhere_(key); }
  /// While this program is in front; whether the key was consumed.
  [[nodiscard]] bool pressHere(const KeyPress& key) const {
    bool isConsumed = false;
    here_(key, isConsumed);
    return isConsumed;
  }

 private:
  bool grants_ = true;
  Signal<const KeyPress&> elsewhere_;
  Signal<const KeyPress&, bool&> here_;
};

}  // namespace kestrel
