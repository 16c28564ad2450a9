#pragma once

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel::test {

/// A folder that stands for one of the kernel's, gone at the end.
class FileTree {
 public:
  using Files = std::map<std::string, std::string>;

  /// Writes files, with a line feed at the end as the kernel does: {"BAT0/status", "Full"}.
  void write(const Files& files) const {
    for (const auto& [name, content] : files) {
      std::filesystem::create_directories((root() / name).parent_path());
      std::ofstream(root() / name) << content << '\n';
    }
  }
  /// The same, in one of its folders.
  void write(const std::string& folder, const Files& files) const {
    for (const auto& [name, content] : files) write({{folder + "/" + name, content}});
  }
  void remove(const std::string& name) const { std::filesystem::remove_all(root() / name); }
  [[nodiscard]] const std::filesystem::path& root() const { return directories_.directories().temporary; }

 private:
  TemporaryDirectories directories_;
};

}  // namespace kestrel::test
