#include "KestrelPlatform/HelperInstallation.h"

#include <algorithm>
#include <fmt/format.h>
#include <system_error>

#include "KestrelPlatform/HelperServiceText.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using Steps = std::vector<HelperInstallation::Step>;

constexpr const char* kService = "kestrel-helper.service";
/// Root runs nothing from a folder that somebody else can write.
constexpr const char* kSystemExecutable = "/usr/local/libexec/kestrel/kestrel-helper";
constexpr const char* kSystemService = "/etc/systemd/system/kestrel-helper.service";
/// Where a package, or an installation below a prefix, puts units so that the service manager finds them.
constexpr const char* kPackagedUnits[] = {"/usr/lib/systemd", "/usr/local/lib/systemd"};

struct Places {
  fs::path executable;
  fs::path service;
};

Places placesOf(const HelperInstallation& installation) {
  if (installation.forWholeMachine) return {kSystemExecutable, kSystemService};
  return {installation.directories.home / ".local/libexec/kestrel/kestrel-helper",
          installation.directories.preferences / "systemd/user" / kService};
}

HelperInstallation::Step systemctl(const HelperInstallation& installation, std::vector<std::string> words,
                                   bool mayFail = false) {
  std::vector<std::string> command{"systemctl"};
  if (!installation.forWholeMachine) command.emplace_back("--user");
  command.insert(command.end(), words.begin(), words.end());
  return {std::move(command), mayFail};
}

bool isThere(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error);
}

/// An installation below a prefix may have put the helper where it would be copied to.
bool isInPlace(const HelperInstallation& installation) {
  std::error_code error;
  return fs::equivalent(installation.helper, placesOf(installation).executable, error);
}

/// Copied to the machine before there was a package. The service manager would prefer it.
bool isCopied(const HelperInstallation& installation) {
  const Places places = placesOf(installation);
  return !isInPlace(installation) && isThere(places.service) && isThere(places.executable);
}

void addRemoval(Steps& steps, const HelperInstallation& installation) {
  const Places places = placesOf(installation);
  steps.push_back({{"rm", "-f", places.service}});
  if (!isInPlace(installation)) {
    steps.push_back({{"rm", "-f", places.executable}});
    steps.push_back({{"rmdir", "--ignore-fail-on-non-empty", places.executable.parent_path()}, true});
  }
  steps.push_back(systemctl(installation, {"daemon-reload"}, true));
}

}  // namespace

/// An active local user may take the lid's inhibitor without root.
bool HelperInstallation::servesSingleUsers() {
  return true;
}

bool HelperInstallation::isPackaged() const {
  const char* manager = forWholeMachine ? "system" : "user";
  return std::ranges::any_of(
      kPackagedUnits, [&](const char* folder) { return isThere(fs::path(folder) / manager / kService); });
}

std::string HelperInstallation::serviceText() const {
  return fmt::format(fmt::runtime(forWholeMachine ? kSystemServiceText : kUserServiceText),
                     placesOf(*this).executable.parent_path().string());
}

Steps HelperInstallation::installSteps(const fs::path& serviceFile) const {
  Steps steps;
  if (!isPackaged()) {
    const Places places = placesOf(*this);
    if (!isInPlace(*this)) steps.push_back({{"install", "-D", "-m", "0755", helper, places.executable}});
    steps.push_back({{"install", "-D", "-m", "0644", serviceFile, places.service}});
    steps.push_back(systemctl(*this, {"daemon-reload"}));
  } else if (isCopied(*this)) {
    addRemoval(steps, *this);
  }
  steps.push_back(systemctl(*this, {"enable", kService}));
  // One that runs already may be of an earlier version.
  steps.push_back(systemctl(*this, {"restart", kService}));
  return steps;
}

Steps HelperInstallation::uninstallSteps() const {
  Steps steps{systemctl(*this, {"disable", "--now", kService}, true)};
  if (!isPackaged() || isCopied(*this)) addRemoval(steps, *this);
  return steps;
}

}  // namespace kestrel
