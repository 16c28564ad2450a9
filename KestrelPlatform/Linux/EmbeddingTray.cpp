#include "KestrelPlatform/Linux/EmbeddingTray.h"

#include <cstdint>
#include <string>
#include <utility>

namespace kestrel {

EmbeddingTray::EmbeddingTray(Executor& executor, std::function<void()> onChange)
    : executor_(executor), onChange_(std::move(onChange)) {
  start();
}

void EmbeddingTray::start() {
  int screen = 0;
  connection_.reset(xcb_connect(nullptr, &screen));
  if (xcb_connection_has_error(connection_.get()) != 0) return;
  selection_ = atom("_NET_SYSTEM_TRAY_S" + std::to_string(screen));
  manager_ = atom("MANAGER");
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_.get()));
  for (; screen > 0 && screens.rem > 1; --screen) xcb_screen_next(&screens);
  root_ = screens.data->root;
  // A new owner announces itself here.
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_.get(), root_, XCB_CW_EVENT_MASK, &events);
  askOwner();
  watch_ = executor_.watch(xcb_get_file_descriptor(connection_.get()), Executor::Readiness::readable,
                           [this] { readEvents(); });
  // What came with the answers is not announced again.
  first_ = executor_.after(0, [this] { readEvents(); });
}

xcb_atom_t EmbeddingTray::atom(const std::string& name) {
  const auto request =
      xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  const XcbPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_.get(), request, nullptr));
  return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

void EmbeddingTray::askOwner() {
  const auto ask = [this] {
    const auto request = xcb_get_selection_owner(connection_.get(), selection_);
    const XcbPtr<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection_.get(), request, nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_NONE);
  };
  owner_ = ask();
  if (owner_ == XCB_NONE) return;
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_.get(), owner_, XCB_CW_EVENT_MASK, &events);
  // It may have gone before its end could be noticed.
  owner_ = ask();
}

void EmbeddingTray::readEvents() {
  const xcb_window_t before = owner_;
  for (;;) {
    const XcbPtr<xcb_generic_event_t> event(xcb_poll_for_event(connection_.get()));
    if (!event) break;
    if (isAboutOwner(*event)) askOwner();
  }
  if (xcb_connection_has_error(connection_.get()) != 0) {
    watch_.reset();
    owner_ = XCB_NONE;
  }
  if (owner_ != before) onChange_();
}

bool EmbeddingTray::isAboutOwner(const xcb_generic_event_t& event) const {
  constexpr std::uint8_t kTypeMask = 0x7F;  // The rest tells whether another client sent it.
  switch (event.response_type & kTypeMask) {
    case XCB_CLIENT_MESSAGE: {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
      return message.type == manager_ && message.data.data32[1] == selection_;
    }
    case XCB_DESTROY_NOTIFY:
      return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == owner_;
    default:
      return false;
  }
}

}  // namespace kestrel
