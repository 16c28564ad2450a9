#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KestrelCore/Usage/Providers/FileStamp.h"

namespace kestrel {

/// The "*.jsonl" files anywhere below a folder, and which of them have to be read. Remembers what it found:
/// looking again costs one look at each folder and file, and lists only folders that changed. Links are not
/// followed. Not thread-safe.
class LogFiles {
 public:
  /// So many of the newest files are always read.
  static constexpr std::size_t kNewest = 5;

  struct File {
    std::string path;
    FileStamp stamp;

    /// The name without its extension.
    [[nodiscard]] std::string stem() const;
  };

  explicit LogFiles(std::string folder) : root_(std::move(folder)) {}

  /// What to read now, newest first: of the newest files those that changed since they were last handed out
  /// here, and every file that appeared or changed since the last call. The first time only the newest.
  [[nodiscard]] std::vector<File> takeForReading();
  /// Hands a file out again the next time, because it could not be read.
  void retry(const File& file);
  /// Changes nothing of what is to be read.
  [[nodiscard]] std::optional<File> newest();

 private:
  struct Entry {
    File file;
    /// Since the last time that files were handed out.
    bool isChanged = true;
    bool isUnread = true;
  };
  struct Folder {
    std::int64_t modified = 0;
    std::uint64_t inode = 0;
    /// A change within the resolution of the folder's time would not show, so each is followed by one more.
    bool hasToBeListed = true;
    std::vector<Entry> entries;
  };

  void refresh();
  /// False when it is gone.
  [[nodiscard]] bool refreshFolder(const std::string& path, Folder& folder);
  /// False when it may not be listed, which can change.
  [[nodiscard]] bool list(const std::string& path, Folder& folder);
  void addFolder(const std::string& path);
  void refreshFiles(Folder& folder);
  /// So many entries with the newest files, in no order.
  [[nodiscard]] std::vector<Entry*> newestEntries(std::size_t count);

  const std::string root_;
  std::map<std::string, Folder> folders_;
  std::vector<std::string> unlisted_;
  bool anyChange_ = false;
  bool isFirst_ = true;
};

}  // namespace kestrel
