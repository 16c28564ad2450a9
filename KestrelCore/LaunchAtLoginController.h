#pragma once

#include <memory>
#include <string>

#include "KestrelCore/Platform/LoginItem.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// Whether Kestrel starts when the user logs in. Keeps no state: the system's is the only one. Main thread.
class LaunchAtLoginController {
 public:
  /// The item outlives the controller.
  LaunchAtLoginController(LoginItem& item, std::shared_ptr<LogSink> sink);

  [[nodiscard]] bool isEnabled() const { return item_.status() == LoginItem::kEnabled; }
  /// Whether the state is now the wanted one; a failure is logged. Does nothing when it is already, and
  /// everything but enabled counts as disabled.
  bool setEnabled(bool enabled);
  /// The state in words.
  [[nodiscard]] std::string statusDescription() const;

 private:
  LoginItem& item_;
  const Logger logger_;
};

}  // namespace kestrel
