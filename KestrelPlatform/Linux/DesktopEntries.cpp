#include "KestrelPlatform/Linux/DesktopEntries.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <system_error>
#include <utility>

#include "KestrelCore/Support/AsciiCase.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Utf8.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

/// Real ones are a few KiB, mostly translations.
constexpr std::size_t kMaximumEntryBytes = 256UL * 1024;
/// A folder that holds more is no applications folder.
constexpr std::size_t kMaximumFiles = 10'000;
constexpr std::string_view kSuffix = ".desktop";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The words of an Exec line; within quotes a backslash keeps the next character.
std::vector<std::string> wordsOf(std::string_view line) {
  std::vector<std::string> words;
  bool isQuoted = false;
  bool isInWord = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (c == '"') {
      isQuoted = !isQuoted;
      continue;
    }
    if (!isQuoted && c == ' ') {
      isInWord = false;
      continue;
    }
    if (!std::exchange(isInWord, true)) words.emplace_back();
    words.back() += isQuoted && c == '\\' && i + 1 < line.size() ? line[++i] : c;
  }
  return words;
}

std::string fileNameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

/// The program of an Exec line, also where `env` sets variables for it.
std::string programOf(std::string_view line) {
  const auto words = wordsOf(line);
  auto word = words.begin();
  if (word != words.end() && fileNameOf(*word) == "env") {
    word = std::find_if(word + 1, words.end(),
                        [](const auto& each) { return each.find('=') == std::string::npos; });
  }
  return word == words.end() ? std::string() : lowerCased(fileNameOf(*word));
}

struct EntryFile {
  std::string id;
  fs::path path;
};

/// The entry files below a folder, by id.
std::vector<EntryFile> entryFiles(const fs::path& folder) {
  std::vector<EntryFile> files;
  std::error_code error;
  const auto options = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator entry(folder, options, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().extension() != kSuffix) continue;
    std::string id = entry->path().lexically_relative(folder);
    id.resize(id.size() - kSuffix.size());
    std::ranges::replace(id, '/', '-');
    files.push_back({std::move(id), entry->path()});
    if (files.size() >= kMaximumFiles) break;
  }
  std::ranges::sort(files, {}, &EntryFile::id);
  return files;
}

}  // namespace

std::optional<DesktopEntry> parseDesktopEntry(std::string id, std::string_view text) {
  DesktopEntry entry{std::move(id), {}, {}};
  bool isInEntry = false;
  while (!text.empty()) {
    const auto end = text.find('\n');
    const auto line = trimmed(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.starts_with('[')) isInEntry = line == "[Desktop Entry]";
    const auto equals = line.find('=');
    if (!isInEntry || equals == std::string_view::npos) continue;
    const auto key = trimmed(line.substr(0, equals));
    const auto value = trimmed(line.substr(equals + 1));
    if (key == "Name") entry.name = value;
    if (key == "Exec") entry.program = programOf(value);
    if (key == "Type" && value != "Application") return std::nullopt;
    if ((key == "NoDisplay" || key == "Hidden") && value == "true") return std::nullopt;
  }
  if (entry.name.empty() || entry.program.empty()) return std::nullopt;
  makeUtf8(entry.id);
  makeUtf8(entry.name);
  return entry;
}

std::vector<DesktopEntry> installedEntries(const std::vector<fs::path>& folders,
                                           const std::vector<std::string_view>& programs) {
  std::vector<DesktopEntry> entries;
  std::set<std::string> seen;
  for (const auto& folder : folders) {
    for (auto& file : entryFiles(folder)) {
      if (!seen.insert(file.id).second) continue;
      const auto text = readWholeFile(file.path, kMaximumEntryBytes);
      auto entry = text ? parseDesktopEntry(std::move(file.id), *text) : std::nullopt;
      if (!entry || std::ranges::find(programs, entry->program) == programs.end()) continue;
      entries.push_back(*std::move(entry));
    }
  }
  return entries;
}

std::vector<fs::path> applicationsFolders(const fs::path& home) {
  const char* own = std::getenv("XDG_DATA_HOME");
  const char* shared = std::getenv("XDG_DATA_DIRS");
  std::vector<fs::path> folders{own != nullptr && *own == '/' ? fs::path(own) / "applications"
                                                              : home / ".local/share/applications"};
  std::string_view rest = shared != nullptr && *shared != '\0' ? shared : "/usr/local/share:/usr/share";
  while (!rest.empty()) {
    const auto colon = rest.find(':');
    const auto folder = rest.substr(0, colon);
    if (folder.starts_with('/')) folders.push_back(fs::path(folder) / "applications");
    rest.remove_prefix(colon == std::string_view::npos ? rest.size() : colon + 1);
  }
  return folders;
}

}  // namespace kestrel
