#include "KestrelCore/Presentation/AppearanceModel.h"

#include <array>
#include <cmath>
#include <fmt/format.h>
#include <string_view>

#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {
namespace {

struct Texts {
  std::string_view doing;
  std::string_view meaning;
};

constexpr std::array<Texts, 5> kTexts{{{"Resting", "No agent is at work"},
                                       {"Typing", "An agent works, and the computer stays awake"},
                                       {"Thinking", "An agent waits for your answer"},
                                       {"Celebrate", "An agent has finished"},
                                       {"Alarmed", "An agent failed, or protection is blocked"}}};

/// "2.8", never rounded up.
std::string rate(double secondsPerFrame) {
  return fmt::format("{:.1f}", std::floor(10 / secondsPerFrame) / 10);
}

/// What trays ask for.
constexpr std::array<int, 6> kSizes{16, 22, 24, 32, 44, 48};

}  // namespace

AppearanceModel appearanceModel() {
  AppearanceModel model;
  const auto& blob = KestrelBlobAvatarProvider::shared();
  for (const auto state : allCases<KestrelVisualState>()) {
    const Texts& texts = kTexts[static_cast<std::size_t>(state)];
    model.previews.push_back({state, std::string(displayLabel(state)),
                              fmt::format("{} {} FPS", texts.doing, rate(blob.frameDuration(state))),
                              std::string(texts.meaning)});
  }
  for (const int pixels : kSizes) {
    model.icons.push_back({pixels, 0, true, fmt::format("{} px", pixels)});
    model.icons.push_back({pixels, 3, true, fmt::format("{} px, 3 agents", pixels)});
    model.icons.push_back({pixels, 0, false, fmt::format("{} px, switched off", pixels)});
  }
  return model;
}

}  // namespace kestrel
