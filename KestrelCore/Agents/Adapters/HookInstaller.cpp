#include "KestrelCore/Agents/Adapters/HookInstaller.h"

#include <algorithm>
#include <functional>
#include <string>
#include <system_error>
#include <utility>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

bool isBackupName(const std::string& name, const std::string& original) {
  if (original.empty() || !name.starts_with(original)) return false;
  return name.size() == original.size() || name[original.size()] == '.' || name[original.size()] == '-';
}

}  // namespace

HookInstaller::HookInstaller(const Directories& directories)
    : backupDirectory_(directories.applicationSupport / "Kestrel" / "Backups") {}

std::vector<fs::path> HookInstaller::listBackups(const fs::path& configuration) const {
  const std::string original = configuration.filename().native();
  std::vector<std::pair<fs::file_time_type, fs::path>> found;
  std::error_code error;
  for (fs::directory_iterator entry(backupDirectory_, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ofEntry;
    if (!isBackupName(entry->path().filename().native(), original)) continue;
    if (!entry->is_regular_file(ofEntry)) continue;
    const auto written = entry->last_write_time(ofEntry);
    if (!ofEntry) found.emplace_back(written, entry->path());
  }
  std::ranges::sort(found, std::greater());
  std::vector<fs::path> backups;
  for (auto& [written, path] : found) backups.push_back(std::move(path));
  return backups;
}

}  // namespace kestrel
