#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace kestrel {

/// The user's folders, absolute and without a trailing slash; they need not exist. A plain value made once at
/// the edge and handed to whoever needs a path.
struct Directories {
  std::filesystem::path home;
  /// Parent of the folder "Kestrel" with the sockets and the data files.
  std::filesystem::path applicationSupport;
  /// Parent of the folder "Kestrel" with log files.
  std::filesystem::path logs;
  /// Holds the settings file "com.kestrel.app.json" where settings are a file.
  std::filesystem::path preferences;
  std::filesystem::path temporary;
  /// Path prefixes of the system-wide helper's run-time files.
  std::vector<std::filesystem::path> runtimePrefixes;
  /// Where the helper listens that serves the whole machine.
  std::filesystem::path systemHelperSocket = "/var/run/kestrel-helper.sock";

  [[nodiscard]] std::filesystem::path runDirectory() const { return applicationSupport / "Kestrel" / "run"; }
  [[nodiscard]] std::filesystem::path hookSocket() const { return runDirectory() / "kestrel.sock"; }
  [[nodiscard]] std::filesystem::path controlSocket() const {
    return runDirectory() / "kestrel-control.sock";
  }
  /// Where a helper listens that this user runs.
  [[nodiscard]] std::filesystem::path userHelperSocket() const {
    return runDirectory() / "kestrel-helper.sock";
  }
  [[nodiscard]] std::filesystem::path lockFile() const { return runDirectory() / "kestrel.lock"; }
  [[nodiscard]] std::filesystem::path settingsFile() const { return preferences / "com.kestrel.app.json"; }
};

/// The folders of the user who runs this process, from the platform. Absent without a home directory.
std::optional<Directories> userDirectories();

/// Other places where a client of Kestrel's sockets should look for `Kestrel/run` when nothing listens at the
/// first: Application Support folders that Kestrel would use with another environment.
std::vector<std::filesystem::path> alternativeApplicationSupport(const Directories& directories);

}  // namespace kestrel
