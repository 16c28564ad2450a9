#pragma once

#include <functional>
#include <string_view>

namespace kestrel {

/// Sounds for people. Main thread only; never waits for a sound.
class Chime {
 public:
  virtual ~Chime() = default;
  /// Plays one of the system's sounds by its name. `onMissing` is called on the main thread, at once or
  /// later, when it cannot be played.
  virtual void play(std::string_view name, std::function<void()> onMissing) = 0;
  virtual void beep() = 0;
};

}  // namespace kestrel
