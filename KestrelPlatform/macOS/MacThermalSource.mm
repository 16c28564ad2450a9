#include <Foundation/Foundation.h>

#include <utility>

#include "KestrelPlatform/macOS/CallbackSlot.h"
#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

class ThermalObservation final : public Registration {
 public:
  explicit ThermalObservation(std::function<void()> onChange)
      : slot_(std::make_shared<CallbackSlot>(std::move(onChange))) {
    const auto slot = slot_;
    observer_ = [[NSNotificationCenter defaultCenter]
        addObserverForName:NSProcessInfoThermalStateDidChangeNotification
                    object:nil
                     queue:[NSOperationQueue mainQueue]
                usingBlock:^(NSNotification*) {
                  const std::shared_ptr<CallbackSlot> alive = slot;
                  alive->call();
                }];
  }
  ~ThermalObservation() override {
    slot_->deactivate();
    [[NSNotificationCenter defaultCenter] removeObserver:observer_];
  }
  ThermalObservation(const ThermalObservation&) = delete;
  ThermalObservation& operator=(const ThermalObservation&) = delete;

 private:
  const std::shared_ptr<CallbackSlot> slot_;
  id<NSObject> observer_ = nil;
};

class MacThermalSource final : public ThermalSource {
 public:
  int level() override { return static_cast<int>([NSProcessInfo processInfo].thermalState); }

  RegistrationPtr observe(std::function<void()> onChange) override {
    // The system sends notifications only to processes that have read the state.
    (void)level();
    return std::make_unique<ThermalObservation>(std::move(onChange));
  }

  std::optional<std::string> sourceName() const override { return "macOS thermal state"; }
};

}  // namespace

std::unique_ptr<ThermalSource> makeMacThermalSource() {
  return std::make_unique<MacThermalSource>();
}

}  // namespace kestrel
