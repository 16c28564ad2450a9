#include "KestrelPlatform/Linux/LinuxLowPowerMode.h"

#include <utility>

namespace kestrel {
namespace {

class LinuxLowPowerMode final : public LowPowerMode {
 public:
  explicit LinuxLowPowerMode(std::shared_ptr<HardwareServices> services) : services_(std::move(services)) {}

  [[nodiscard]] bool isEnabled() override { return services_->isPowerSaving().value_or(false); }

 private:
  const std::shared_ptr<HardwareServices> services_;
};

}  // namespace

std::unique_ptr<LowPowerMode> makeLinuxLowPowerMode(std::shared_ptr<HardwareServices> services) {
  return std::make_unique<LinuxLowPowerMode>(std::move(services));
}

}  // namespace kestrel
