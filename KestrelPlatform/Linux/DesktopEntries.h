#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// What an installed application calls itself.
struct DesktopEntry {
  /// The file's path below its applications folder with dashes for slashes, without ".desktop".
  std::string id;
  /// Not translated.
  std::string name;
  /// The file name of the program that it starts, in lower case.
  std::string program;
};

/// Reads one file of the desktop entry standard; absent for what is no visible application.
std::optional<DesktopEntry> parseDesktopEntry(std::string id, std::string_view text);

/// The entries of the applications folders that start one of the programs. Of two with one id, the one in
/// the earlier folder counts.
std::vector<DesktopEntry> installedEntries(const std::vector<std::filesystem::path>& folders,
                                           const std::vector<std::string_view>& programs);

/// The applications folders of this user's environment, most important first.
std::vector<std::filesystem::path> applicationsFolders(const std::filesystem::path& home);

}  // namespace kestrel
