#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/ps/IOPSKeys.h>
#include <IOKit/ps/IOPowerSources.h>

#include <utility>

#include "KestrelPlatform/macOS/CFValues.h"
#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

PowerSourceDescription describe(CFDictionaryRef source) {
  const auto value = [source](CFStringRef key) { return CFDictionaryGetValue(source, key); };
  PowerSourceDescription description;
  description.powerSourceState = stringValue(value(CFSTR(kIOPSPowerSourceStateKey)));
  description.isCharging = boolValue(value(CFSTR(kIOPSIsChargingKey)));
  description.currentCapacity = integerValue(value(CFSTR(kIOPSCurrentCapacityKey)));
  description.maxCapacity = integerValue(value(CFSTR(kIOPSMaxCapacityKey)));
  description.timeToEmpty = integerValue(value(CFSTR(kIOPSTimeToEmptyKey)));
  return description;
}

std::optional<PowerSource::List> readSources() {
  const CFRef<CFTypeRef> info(IOPSCopyPowerSourcesInfo());
  if (!info) return std::nullopt;
  const CFRef<CFArrayRef> sources(IOPSCopyPowerSourcesList(info.get()));
  if (!sources) return std::nullopt;
  PowerSource::List list;
  for (CFIndex i = 0; i < CFArrayGetCount(sources.get()); ++i) {
    const auto source = IOPSGetPowerSourceDescription(info.get(), CFArrayGetValueAtIndex(sources.get(), i));
    list.push_back(source != nullptr ? std::optional(describe(source)) : std::nullopt);
  }
  return list;
}

class PowerSourceObservation final : public Registration {
 public:
  explicit PowerSourceObservation(std::function<void()> onChange)
      : onChange_(std::move(onChange)),
        source_(IOPSNotificationCreateRunLoopSource(&PowerSourceObservation::changed, this)) {
    if (source_) CFRunLoopAddSource(CFRunLoopGetMain(), source_.get(), kCFRunLoopCommonModes);
  }
  ~PowerSourceObservation() override {
    if (source_) CFRunLoopRemoveSource(CFRunLoopGetMain(), source_.get(), kCFRunLoopCommonModes);
  }
  PowerSourceObservation(const PowerSourceObservation&) = delete;
  PowerSourceObservation& operator=(const PowerSourceObservation&) = delete;

  [[nodiscard]] bool isObserving() const { return static_cast<bool>(source_); }

 private:
  static void changed(void* context) {
    // A copy: the function may end this observation.
    const auto onChange = static_cast<PowerSourceObservation*>(context)->onChange_;
    @autoreleasepool {
      onChange();
    }
  }

  const std::function<void()> onChange_;
  const CFRef<CFRunLoopSourceRef> source_;
};

class MacPowerSource final : public PowerSource {
 public:
  std::optional<List> read() override { return readSources(); }

  RegistrationPtr observe(std::function<void()> onChange) override {
    auto observation = std::make_unique<PowerSourceObservation>(std::move(onChange));
    if (!observation->isObserving()) return nullptr;
    return observation;
  }

  std::optional<std::string> sourceName() const override {
    const auto sources = readSources();
    if (!sources || sources->empty()) return std::nullopt;
    return "macOS power sources";
  }
};

}  // namespace

std::unique_ptr<PowerSource> makeMacPowerSource() {
  return std::make_unique<MacPowerSource>();
}

}  // namespace kestrel
