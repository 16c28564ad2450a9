#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Control/ControlProtocol.h"

namespace kestrel {

/// Carries out the control socket's commands: each reads published state, or changes a setting and evaluates.
/// Main thread.
class ControlService {
 public:
  /// `show` brings the application's window to the front; it returns false where there is none.
  ControlService(AppCoordinator& coordinator, std::function<bool()> show);

  [[nodiscard]] ControlReply perform(const ControlRequest& request);

 private:
  using Arguments = std::vector<std::string>;
  ControlReply status(const Arguments& arguments);
  ControlReply sessions(const Arguments& arguments);
  ControlReply usage(const Arguments& arguments);
  ControlReply pause(const Arguments& arguments);
  ControlReply resume(const Arguments& arguments);
  ControlReply hold(const Arguments& arguments);
  ControlReply enable(const Arguments& arguments);
  ControlReply disable(const Arguments& arguments);
  ControlReply settings(const Arguments& arguments);
  ControlReply doctor(const Arguments& arguments);
  ControlReply diagnostics(const Arguments& arguments);
  ControlReply why(const Arguments& arguments);
  ControlReply show(const Arguments& arguments);
  /// Evaluates after a change and tells the new status.
  ControlReply changed(bool kept);

  AppCoordinator& coordinator_;
  const std::function<bool()> show_;
};

}  // namespace kestrel
