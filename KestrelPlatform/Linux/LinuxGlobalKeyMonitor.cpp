#include "KestrelPlatform/Linux/LinuxGlobalKeyMonitor.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KestrelCore/Support/Logger.h"
#include "KestrelPlatform/Linux/ShortcutKeys.h"
#include "KestrelPlatform/Linux/XcbMemory.h"

namespace kestrel {
namespace {

constexpr const char* kShortcut = "Alt+Super+L";
/// A change of the layout comes in several pieces.
constexpr double kSettleSeconds = 0.1;

/// The display's errors are numbers; only one can be met by what is asked here.
std::string errorText(const xcb_generic_error_t& error) {
  if (error.error_code == XCB_ACCESS) return "another program has taken it";
  return "the display refuses it (error " + std::to_string(error.error_code) + ")";
}

/// The shortcut on one display, for as long as this lives.
class KeyGrab final : public Registration {
 public:
  KeyGrab(Executor& executor, const Logger& logger, std::function<void(const KeyPress&)> handler)
      : executor_(executor), logger_(logger), handler_(std::move(handler)) {}
  /// The display may know a new grab before it sees an old connection end.
  ~KeyGrab() override {
    if (isLost()) return;
    release();
    const XcbPtr<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(connection_.get(), xcb_get_input_focus(connection_.get()), nullptr));
  }
  KeyGrab(const KeyGrab&) = delete;
  KeyGrab& operator=(const KeyGrab&) = delete;

  /// Null when it is in force, else why it is not.
  std::optional<std::string> start() {
    int screen = 0;
    connection_.reset(xcb_connect(nullptr, &screen));
    if (isLost()) return "the display cannot be reached";
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_.get()));
    for (; screen > 0 && screens.rem > 1; --screen) xcb_screen_next(&screens);
    root_ = screens.data->root;
    if (auto problem = grab()) return problem;
    watch_ = executor_.watch(xcb_get_file_descriptor(connection_.get()), Executor::Readiness::readable,
                             [this] { readEvents(); });
    // What came with the answers is not announced again.
    first_ = executor_.after(0, [this] { readEvents(); });
    return std::nullopt;
  }

 private:
  [[nodiscard]] bool isLost() const {
    return !connection_ || xcb_connection_has_error(connection_.get()) != 0;
  }

  /// All or nothing; a grab of our own that is taken again is no conflict.
  std::optional<std::string> grab() {
    release();
    std::string problem;
    keys_ = ShortcutKeys::read(connection_.get(), problem);
    if (!keys_) return problem;
    std::vector<xcb_void_cookie_t> requests;
    for (const std::uint16_t state : keys_->states()) {
      requests.push_back(xcb_grab_key_checked(connection_.get(), 0, root_, state, keys_->letter,
                                              XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    std::optional<std::string> refusal;
    for (const auto request : requests) {
      const XcbPtr<xcb_generic_error_t> error(xcb_request_check(connection_.get(), request));
      if (error) refusal = errorText(*error);
    }
    if (isLost()) return "the connection to the display was lost";
    if (refusal) release();
    return refusal;
  }

  void release() {
    if (keys_)
      xcb_ungrab_key(connection_.get(), keys_->letter, root_, static_cast<std::uint16_t>(XCB_MOD_MASK_ANY));
    keys_.reset();
    xcb_flush(connection_.get());
  }

  void readEvents() {
    const std::weak_ptr<int> alive = alive_;
    for (;;) {
      const XcbPtr<xcb_generic_event_t> event(xcb_poll_for_event(connection_.get()));
      if (!event) break;
      handle(*event);
      if (alive.expired()) return;
    }
    if (!isLost()) return;
    watch_.reset();
    settled_.reset();
    logger_.error("The shortcut {} is lost: the connection to the display ended", kShortcut);
  }

  void handle(const xcb_generic_event_t& event) {
    constexpr std::uint8_t kTypeMask = 0x7F;  // The rest tells whether another client sent it.
    switch (event.response_type & kTypeMask) {
      case XCB_KEY_PRESS:
        return press(reinterpret_cast<const xcb_key_press_event_t&>(event));
      case XCB_KEY_RELEASE:
        lastRelease_ = reinterpret_cast<const xcb_key_release_event_t&>(event).time;
        return;
      case XCB_MAPPING_NOTIFY:
        settled_ = executor_.after(kSettleSeconds, [this] { followLayout(); });
        return;
      default:
        return;
    }
  }

  /// A key that is held down repeats: it is released and pressed in the same millisecond.
  void press(const xcb_key_press_event_t& event) {
    if (!keys_ || event.detail != keys_->letter || event.time == lastRelease_) return;
    const KeyPress key{KeyPress::kKeyL, keys_->flags(event.state)};
    const auto handler = handler_;  // It may end this object.
    handler(key);
  }

  void followLayout() {
    if (const auto problem = grab())
      logger_.error("The shortcut {} is lost after a change of the keyboard: {}", kShortcut, *problem);
    readEvents();
  }

  Executor& executor_;
  const Logger logger_;
  const std::function<void(const KeyPress&)> handler_;
  XcbPtr<xcb_connection_t> connection_;
  xcb_window_t root_ = XCB_NONE;
  /// Absent while nothing is grabbed.
  std::optional<ShortcutKeys> keys_;
  std::optional<xcb_timestamp_t> lastRelease_;
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
  RegistrationPtr watch_;
  RegistrationPtr first_;
  RegistrationPtr settled_;
};

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

class LinuxGlobalKeyMonitor final : public GlobalKeyMonitor {
 public:
  LinuxGlobalKeyMonitor(Executor& executor, std::shared_ptr<LogSink> sink)
      : executor_(executor), logger_(std::move(sink), "shortcut") {}

  [[nodiscard]] RegistrationPtr addGlobal(std::function<void(const KeyPress&)> handler) override {
    if (!isSet("DISPLAY")) {
      if (!std::exchange(isAbsenceSaid_, true))
        logger_.info("The shortcut {} is not available here: no X display", kShortcut);
      return nullptr;
    }
    auto grab = std::make_unique<KeyGrab>(executor_, logger_, std::move(handler));
    if (const auto problem = grab->start()) {
      logger_.error("The shortcut {} is not available: {}", kShortcut, *problem);
      return nullptr;
    }
    if (isSet("WAYLAND_DISPLAY"))
      logger_.info("On Wayland the shortcut {} works while an X11 window is in front", kShortcut);
    return grab;
  }

  [[nodiscard]] RegistrationPtr addLocal(std::function<bool(const KeyPress&)>) override { return nullptr; }

 private:
  Executor& executor_;
  const Logger logger_;
  bool isAbsenceSaid_ = false;
};

}  // namespace

std::unique_ptr<GlobalKeyMonitor> makeLinuxGlobalKeyMonitor(Executor& executor,
                                                            std::shared_ptr<LogSink> sink) {
  return std::make_unique<LinuxGlobalKeyMonitor>(executor, std::move(sink));
}

}  // namespace kestrel
