#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestrel {

/// A widget to be pictured, with whatever it looks at, which goes after it.
struct Scenery {
  std::shared_ptr<void> world;
  std::unique_ptr<QWidget> widget;
};

/// One picture in each theme and scale: `NAME-light@2x.png`.
struct Scene {
  std::string name;
  std::function<Scenery()> build;
};

using Scenes = std::vector<Scene>;

// To add scenes: a function here, a file beside this one, and a line in main.cpp.

Scenes popoverScenes();
Scenes blobScenes();
Scenes kitScenes();
Scenes trayScenes();
Scenes agentsScenes();
Scenes budgetScenes();
Scenes onboardingScenes();
Scenes windowScenes();

}  // namespace kestrel
