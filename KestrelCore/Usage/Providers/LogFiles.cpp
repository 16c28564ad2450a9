#include "KestrelCore/Usage/Providers/LogFiles.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace kestrel {
namespace {

constexpr std::string_view kExtension = ".jsonl";

bool isNewer(const LogFiles::File& a, const LogFiles::File& b) {
  return std::tie(a.stamp.modified, a.path) > std::tie(b.stamp.modified, b.path);
}

struct Closer {
  void operator()(DIR* stream) const { ::closedir(stream); }
};

}  // namespace

std::string LogFiles::File::stem() const {
  const auto name = path.substr(path.rfind('/') + 1);
  return name.substr(0, name.size() - kExtension.size());
}

std::vector<LogFiles::File> LogFiles::takeForReading() {
  refresh();
  if (!anyChange_) return {};
  std::vector<Entry*> chosen = newestEntries(kNewest);
  std::erase_if(chosen, [](const Entry* entry) { return !entry->isUnread; });
  for (auto& [path, folder] : folders_) {
    for (Entry& entry : folder.entries) {
      if (std::exchange(entry.isChanged, false) && !isFirst_) chosen.push_back(&entry);
    }
  }
  isFirst_ = anyChange_ = false;
  std::ranges::sort(chosen, [](const Entry* a, const Entry* b) { return isNewer(a->file, b->file); });
  const auto repeated = std::ranges::unique(chosen);
  chosen.erase(repeated.begin(), repeated.end());
  std::vector<File> files;
  for (Entry* entry : chosen) {
    entry->isUnread = false;
    files.push_back(entry->file);
  }
  return files;
}

void LogFiles::retry(const File& file) {
  const auto folder = folders_.find(file.path.substr(0, file.path.rfind('/')));
  if (folder == folders_.end()) return;
  for (Entry& entry : folder->second.entries) {
    if (entry.file.path == file.path) entry.isChanged = entry.isUnread = anyChange_ = true;
  }
}

std::optional<LogFiles::File> LogFiles::newest() {
  refresh();
  const auto entries = newestEntries(1);
  return entries.empty() ? std::nullopt : std::optional(entries.front()->file);
}

std::vector<LogFiles::Entry*> LogFiles::newestEntries(std::size_t count) {
  std::vector<Entry*> entries;
  for (auto& [path, folder] : folders_) {
    for (Entry& entry : folder.entries) entries.push_back(&entry);
  }
  if (entries.size() <= count) return entries;
  const auto limit = entries.begin() + static_cast<std::ptrdiff_t>(count);
  std::ranges::nth_element(entries, limit,
                           [](const Entry* a, const Entry* b) { return isNewer(a->file, b->file); });
  entries.resize(count);
  return entries;
}

void LogFiles::refresh() {
  addFolder(root_);
  for (auto folder = folders_.begin(); folder != folders_.end();) {
    if (refreshFolder(folder->first, folder->second)) {
      ++folder;
    } else {
      anyChange_ = true;
      folder = folders_.erase(folder);
    }
  }
  // Folders found on the way, and theirs.
  while (!unlisted_.empty()) {
    const std::string path = std::move(unlisted_.back());
    unlisted_.pop_back();
    const auto [folder, isNew] = folders_.try_emplace(path);
    if (isNew && !refreshFolder(folder->first, folder->second)) folders_.erase(folder);
  }
}

void LogFiles::addFolder(const std::string& path) {
  if (!folders_.contains(path)) unlisted_.push_back(path);
}

bool LogFiles::refreshFolder(const std::string& path, Folder& folder) {
  struct stat status {};
  // The folder that was asked for may be a link; one below it would be listed twice, or without end.
  const int result = path == root_ ? ::stat(path.c_str(), &status) : ::lstat(path.c_str(), &status);
  if (result != 0 || !S_ISDIR(status.st_mode)) return false;
  const FileStamp stamp = stampOf(status);
  const bool isChanged = stamp.modified != folder.modified || stamp.inode != folder.inode;
  if (isChanged || folder.hasToBeListed) {
    const bool isListed = list(path, folder);
    folder.modified = stamp.modified;
    folder.inode = stamp.inode;
    folder.hasToBeListed = isChanged || !isListed;
  }
  refreshFiles(folder);
  return true;
}

bool LogFiles::list(const std::string& path, Folder& folder) {
  UniqueDescriptor descriptor = openQuietly(path, O_DIRECTORY);
  const std::unique_ptr<DIR, Closer> stream(descriptor ? ::fdopendir(descriptor.get()) : nullptr);
  if (stream == nullptr) return false;
  (void)descriptor.release();
  std::unordered_set<std::string> known;
  for (const Entry& entry : folder.entries) known.insert(entry.file.path);
  while (const dirent* entry = ::readdir(stream.get())) {
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    std::string child = path + '/' + entry->d_name;
    struct stat status {};
    if (entry->d_type == DT_UNKNOWN && ::lstat(child.c_str(), &status) != 0) continue;
    if (entry->d_type == DT_DIR || S_ISDIR(status.st_mode)) {
      addFolder(child);
    } else if ((entry->d_type == DT_REG || S_ISREG(status.st_mode)) && name.size() > kExtension.size() &&
               name.ends_with(kExtension) && !known.contains(child)) {
      folder.entries.push_back({.file = {.path = std::move(child), .stamp = {}}});
    }
  }
  return true;
}

void LogFiles::refreshFiles(Folder& folder) {
  const auto gone = std::erase_if(folder.entries, [this](Entry& entry) {
    const auto stamp = stampOf(entry.file.path);
    if (!stamp) return true;
    if (*stamp == entry.file.stamp) return false;
    entry.file.stamp = *stamp;
    entry.isChanged = entry.isUnread = anyChange_ = true;
    return false;
  });
  if (gone > 0) anyChange_ = true;
}

}  // namespace kestrel
