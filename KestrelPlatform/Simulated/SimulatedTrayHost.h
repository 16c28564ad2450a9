#pragma once

#include <utility>

#include "KestrelCore/Support/Published.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {

/// A tray host that comes and goes as a script says.
class SimulatedTrayHost final : public TrayHost {
 public:
  [[nodiscard]] unsigned present() const override { return isPresent_ ? generation_ : 0; }
  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange) override {
    return changed_.subscribe(std::move(onChange));
  }

  void come() {
    isPresent_ = true;
    ++generation_;
    changed_();
  }
  void go() {
    isPresent_ = false;
    changed_();
  }

 private:
  bool isPresent_ = false;
  unsigned generation_ = 0;
  Signal<> changed_;
};

}  // namespace kestrel
