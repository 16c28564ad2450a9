#include "KestrelPlatform/HelperInstallation.h"

#include <fmt/format.h>
#include <string>

#include "KestrelPlatform/HelperServiceText.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using Steps = std::vector<HelperInstallation::Step>;

constexpr const char* kServiceTarget = "system/com.kestrel.helper";
constexpr const char* kFolder = "/usr/local/libexec/kestrel";
constexpr const char* kExecutable = "/usr/local/libexec/kestrel/kestrel-helper";
constexpr const char* kService = "/Library/LaunchDaemons/com.kestrel.helper.plist";

}  // namespace

/// Only root may change the system's sleep setting.
bool HelperInstallation::servesSingleUsers() {
  return false;
}

bool HelperInstallation::isPackaged() const {
  return false;
}

std::string HelperInstallation::serviceText() const {
  return fmt::format(fmt::runtime(kSystemServiceText), kFolder);
}

Steps HelperInstallation::installSteps(const fs::path& serviceFile) const {
  return {{{"mkdir", "-p", kFolder}},
          {{"install", "-m", "0755", helper, kExecutable}},
          {{"install", "-m", "0644", serviceFile, kService}},
          {{"launchctl", "bootout", kServiceTarget}, true},
          {{"launchctl", "bootstrap", "system", kService}}};
}

Steps HelperInstallation::uninstallSteps() const {
  return {{{"launchctl", "bootout", kServiceTarget}, true},
          {{"rm", "-f", kService, kExecutable}},
          {{"rmdir", kFolder}, true}};
}

}  // namespace kestrel
