#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// A write was refused. `what()` names the path and the reason.
class KestrelWriteSecurityError : public std::runtime_error {
 public:
  KestrelWriteSecurityError(std::string path, std::string reason);

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const std::string& reason() const { return reason_; }
  [[nodiscard]] std::string errorDescription() const { return what(); }

  friend bool operator==(const KestrelWriteSecurityError& a, const KestrelWriteSecurityError& b) {
    return a.path_ == b.path_ && a.reason_ == b.reason_;
  }

 private:
  std::string path_;
  std::string reason_;
};

/// Decides which files Kestrel may write: only its own. Other tools' configuration is refused first, and by
/// plain string prefix, so that no later rule can admit it. A path must pass twice: as it is spelled, and
/// with every symbolic link resolved. Creates and changes nothing. Safe from any thread.
class KestrelWritePolicy {
 public:
  KestrelWritePolicy(const Directories& directories, std::shared_ptr<LogSink> sink);

  /// Logs each refusal with the path as it was spelled.
  [[nodiscard]] bool mayWrite(const std::filesystem::path& path) const;
  /// For the exact file that a person chose in a save dialog of this process, and for one write: everything
  /// but other tools' configuration. Logs like `mayWrite`.
  [[nodiscard]] bool mayWriteChosen(const std::filesystem::path& chosen) const;
  /// Throws KestrelWriteSecurityError when `mayWrite` is false.
  void assertCanWrite(const std::filesystem::path& path) const;

 private:
  enum class Verdict { allowed, prohibited, outside };
  struct Rules {
    std::vector<std::string> prohibited;
    std::vector<std::string> roots;
    std::string preferences;
    /// `isChosen`: the path is a root of its own.
    [[nodiscard]] Verdict judge(const std::string& path, bool isChosen) const;
  };
  [[nodiscard]] Rules resolvedRules() const;
  [[nodiscard]] Verdict judge(const std::filesystem::path& path, bool isChosen) const;

  Rules rules_;
  Logger logger_;
};

}  // namespace kestrel
