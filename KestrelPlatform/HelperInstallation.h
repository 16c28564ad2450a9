#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "KestrelCore/Platform/Directories.h"

namespace kestrel {

/// How this system is told to start the helper now and always, or never more. Decides nothing and runs
/// nothing: a list of the system's own commands, which the caller shows and runs in order.
struct HelperInstallation {
  /// Started by the system as root, for whoever sits in front of the machine; else by this user, for this
  /// user.
  bool forWholeMachine = false;
  Directories directories;
  /// The helper's executable to install; empty where there is none.
  std::filesystem::path helper;

  struct Step {
    std::vector<std::string> command;
    /// Whether the rest goes on when it fails.
    bool mayFail = false;
  };

  /// Whether a helper can be of use that is not root's.
  [[nodiscard]] static bool servesSingleUsers();
  /// Whether a package brought the helper and its service, which then are not copied.
  [[nodiscard]] bool isPackaged() const;
  /// The service's description for the system's service manager.
  [[nodiscard]] std::string serviceText() const;
  /// `serviceFile` holds the text above.
  [[nodiscard]] std::vector<Step> installSteps(const std::filesystem::path& serviceFile) const;
  /// To be run after the helper has ended its hold.
  [[nodiscard]] std::vector<Step> uninstallSteps() const;
};

}  // namespace kestrel
