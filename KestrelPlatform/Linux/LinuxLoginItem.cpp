#include "KestrelPlatform/Linux/LinuxLoginItem.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaximumEntryBytes = 65'536;
constexpr std::string_view kGroup = "[Desktop Entry]";

/// As any string of the standard is written.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '\\':
        result += "\\\\";
        break;
      case '\n':
        result += "\\n";
        break;
      case '\t':
        result += "\\t";
        break;
      case '\r':
        result += "\\r";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string unescaped(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      result += text[i];
      continue;
    }
    const char c = text[++i];
    result += c == 's' ? ' ' : c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
  }
  return result;
}

/// One word of a command line, before the escapes of every string: field codes begin with '%'.
std::string quotedWord(std::string_view word) {
  std::string result = "\"";
  for (const char c : word) {
    if (c == '"' || c == '`' || c == '$' || c == '\\') result += '\\';
    result += c;
    if (c == '%') result += '%';
  }
  return result + '"';
}

/// A key's value in the entry's own group; empty when there is none. Of several the last counts.
std::string valueOf(std::string_view text, std::string_view key) {
  std::string_view value;
  bool isInEntry = false;
  while (!text.empty()) {
    const auto end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    while (line.ends_with(' ') || line.ends_with('\t') || line.ends_with('\r')) line.remove_suffix(1);
    if (line.starts_with('[')) isInEntry = line == kGroup;
    if (!isInEntry || !line.starts_with(key)) continue;
    line.remove_prefix(key.size());
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with('=')) continue;
    line.remove_prefix(1);
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    value = line;
  }
  return unescaped(value);
}

class LinuxLoginItem final : public LoginItem {
 public:
  LinuxLoginItem(fs::path entryFile, fs::path program, std::shared_ptr<const AtomicFileWriter> files)
      : entryFile_(std::move(entryFile)), program_(std::move(program)), files_(std::move(files)) {}

  [[nodiscard]] int status() override {
    const auto text = readWholeFile(entryFile_, kMaximumEntryBytes);
    if (!text || text->find(kGroup) == std::string::npos) return kNotRegistered;
    if (valueOf(*text, "Hidden") == "true") return kNotRegistered;
    if (valueOf(*text, "X-GNOME-Autostart-enabled") == "false") return kNotRegistered;
    const std::string needed = valueOf(*text, "TryExec");
    if (needed.starts_with('/') && ::access(needed.c_str(), X_OK) != 0) return kNotFound;
    return kEnabled;
  }

  [[nodiscard]] std::optional<std::string> registerItem() override {
    if (program_.empty()) return "the system does not tell where this program is";
    const std::string text = fmt::format(
        "{}\nType=Application\nName=Kestrel\nComment=Keeps the computer awake while coding agents work\n"
        "Exec={}\nTryExec={}\nTerminal=false\n",
        kGroup, escaped(quotedWord(program_.native())), escaped(program_.native()));
    return files_->replace(entryFile_, [&](const auto& append) { append(text); });
  }

  [[nodiscard]] std::optional<std::string> unregisterItem() override { return files_->remove(entryFile_); }

 private:
  const fs::path entryFile_;
  const fs::path program_;
  const std::shared_ptr<const AtomicFileWriter> files_;
};

}  // namespace

std::unique_ptr<LoginItem> makeLinuxLoginItem(fs::path entryFile, fs::path program,
                                              std::shared_ptr<const AtomicFileWriter> files) {
  return std::make_unique<LinuxLoginItem>(std::move(entryFile), std::move(program), std::move(files));
}

fs::path autostartEntry(const fs::path& preferences) {
  return preferences / "autostart/com.kestrel.app.desktop";
}

fs::path ownProgram() {
  constexpr std::string_view kReplaced = " (deleted)";
  std::error_code error;
  std::string path = fs::read_symlink("/proc/self/exe", error);
  if (path.ends_with(kReplaced)) path.resize(path.size() - kReplaced.size());
  return path;
}

}  // namespace kestrel
