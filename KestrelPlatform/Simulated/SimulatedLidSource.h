#pragma once

#include <optional>
#include <string>
#include <utility>

#include "KestrelCore/Platform/LidSource.h"
#include "KestrelCore/Support/Published.h"

namespace kestrel {

/// A scripted lid, at first none.
class SimulatedLidSource final : public LidSource {
 public:
  /// Whether changes can be observed differs between systems.
  explicit SimulatedLidSource(bool observable = true) : observable_(observable) {}

  [[nodiscard]] std::optional<bool> isClosed() override { return closed_; }
  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange) override {
    return observable_ ? changed_.subscribe(std::move(onChange)) : nullptr;
  }
  [[nodiscard]] std::optional<std::string> sourceName() const override {
    return closed_ ? std::optional<std::string>("simulation") : std::nullopt;
  }

  /// Changes what is read, without telling; `fireChange` tells.
  void set(std::optional<bool> closed) { closed_ = closed; }
  void fireChange() const { changed_(); }

 private:
  const bool observable_;
  std::optional<bool> closed_;
  Signal<> changed_;
};

}  // namespace kestrel
