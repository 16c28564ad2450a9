#pragma once

#include <string>
#include <utility>
#include <vector>

#include "KestrelCore/Platform/Chime.h"

namespace kestrel {

/// Records what would be heard: the names of sounds, and "beep". At first every sound exists.
class SimulatedChime final : public Chime {
 public:
  void play(std::string_view name, std::function<void()> onMissing) override {
    if (!hasSounds_) return onMissing();
    heard_.emplace_back(name);
  }
  void beep() override { heard_.emplace_back("beep"); }

  void setHasSounds(bool hasSounds) { hasSounds_ = hasSounds; }
  [[nodiscard]] const std::vector<std::string>& heard() const { return heard_; }

 private:
  bool hasSounds_ = true;
  std::vector<std::string> heard_;
};

}  // namespace kestrel
