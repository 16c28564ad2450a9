#pragma once

#include <functional>
#include <string>

#include "KestrelCore/Support/Executor.h"
#include "KestrelPlatform/Linux/XcbMemory.h"

namespace kestrel {

/// Who embeds status icons on an X display: the owner of a selection, after the system tray standard. Asks
/// the display and waits for its answers, when it is made and when an owner came or went. Main thread.
class EmbeddingTray {
 public:
  EmbeddingTray(Executor& executor, std::function<void()> onChange);

  /// The owner's window; none without a display or an owner.
  [[nodiscard]] xcb_window_t owner() const { return owner_; }

 private:
  void start();
  [[nodiscard]] xcb_atom_t atom(const std::string& name);
  void askOwner();
  void readEvents();
  /// Whether the event says that the owner may be another now.
  [[nodiscard]] bool isAboutOwner(const xcb_generic_event_t& event) const;

  Executor& executor_;
  const std::function<void()> onChange_;
  XcbPtr<xcb_connection_t> connection_;
  xcb_window_t root_ = XCB_NONE;
  xcb_atom_t selection_ = XCB_ATOM_NONE;
  xcb_atom_t manager_ = XCB_ATOM_NONE;
  xcb_window_t owner_ = XCB_NONE;
  RegistrationPtr watch_;
  RegistrationPtr first_;
};

}  // namespace kestrel
