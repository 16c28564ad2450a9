#pragma once

#include <optional>
#include <string>
#include <utility>

#include "KestrelCore/Platform/PowerSource.h"
#include "KestrelCore/Support/Published.h"

namespace kestrel {

/// Scripted power sources: at first there is no information at all.
class SimulatedPowerSource final : public PowerSource {
 public:
  [[nodiscard]] std::optional<List> read() override { return list_; }
  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange) override {
    return changed_.subscribe(std::move(onChange));
  }
  [[nodiscard]] std::optional<std::string> sourceName() const override {
    return list_ ? std::optional<std::string>("simulation") : std::nullopt;
  }

  /// Changes what is read, without telling; `fireChange` tells.
  void set(std::optional<List> list) { list_ = std::move(list); }
  void fireChange() const { changed_(); }

 private:
  std::optional<List> list_;
  Signal<> changed_;
};

class SimulatedLowPowerMode final : public LowPowerMode {
 public:
  [[nodiscard]] bool isEnabled() override { return enabled_; }
  void set(bool enabled) { enabled_ = enabled; }

 private:
  bool enabled_ = false;
};

}  // namespace kestrel
