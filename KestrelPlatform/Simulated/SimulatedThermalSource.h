#pragma once

#include <optional>
#include <string>
#include <utility>

#include "KestrelCore/Platform/ThermalSource.h"
#include "KestrelCore/Support/Published.h"

namespace kestrel {

/// A scripted thermal level, at first nominal.
class SimulatedThermalSource final : public ThermalSource {
 public:
  [[nodiscard]] int level() override { return level_; }
  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange) override {
    return changed_.subscribe(std::move(onChange));
  }
  [[nodiscard]] std::optional<std::string> sourceName() const override { return "simulation"; }

  /// Changes what is read, without telling; `fireChange` tells.
  void set(int level) { level_ = level; }
  void fireChange() const { changed_(); }

 private:
  int level_ = 0;
  Signal<> changed_;
};

}  // namespace kestrel
