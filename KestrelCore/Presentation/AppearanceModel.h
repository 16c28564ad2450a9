#pragma once

#include <string>
#include <vector>

#include "KestrelCore/Presentation/KestrelVisualState.h"

namespace kestrel {

/// One state of the blob.
struct AppearancePreview {
  KestrelVisualState state = KestrelVisualState::idle;
  /// "Working".
  std::string name;
  /// What it does and how fast: "Thinking 2.2 FPS".
  std::string caption;
  /// When it is shown.
  std::string meaning;

  friend bool operator==(const AppearancePreview&, const AppearancePreview&) = default;
};

/// One size of the status icon.
struct AppearanceIcon {
  int pixels = 0;
  /// The number beside it; 0 for none.
  int count = 0;
  bool isEnabled = true;
  /// "22 px, 3 agents", "22 px, switched off".
  std::string caption;

  friend bool operator==(const AppearanceIcon&, const AppearanceIcon&) = default;
};

struct AppearanceModel {
  std::vector<AppearancePreview> previews;
  std::vector<AppearanceIcon> icons;

  friend bool operator==(const AppearanceModel&, const AppearanceModel&) = default;
};

/// Always the same.
AppearanceModel appearanceModel();

}  // namespace kestrel
