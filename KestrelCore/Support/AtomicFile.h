#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

class KestrelWritePolicy;

/// What a written file has to outlive: a crash of this process, or also one of the whole machine, which costs
/// waiting for the disk.
enum class Durability { process, machine };

/// Absent when an operation succeeded; else one line that says what failed and why, for the caller to log.
using FileFailure = std::optional<std::string>;

/// Makes a file's content in pieces of any size, each handed to the function that it is given.
using ContentProducer = std::function<void(const std::function<void(std::string_view)>& append)>;

/// A file that only grows, opened by an AtomicFileWriter. What was appended outlives this process from then
/// on; a crash of the whole machine may take the latest of it. Not thread-safe.
class AppendFile {
 public:
  AppendFile() = default;

  /// False at first, and after a failure that left the file in doubt.
  [[nodiscard]] bool isOpen() const { return static_cast<bool>(descriptor_); }
  /// In bytes; 0 while closed.
  [[nodiscard]] std::uint64_t size() const { return size_; }
  /// Adds all of the bytes in one write, or, on a failure, none of them. Closes the file when it cannot be
  /// put back as it was, or when somebody removed it.
  [[nodiscard]] FileFailure append(std::string_view bytes);
  void close();

 private:
  friend class AtomicFileWriter;
  std::filesystem::path path_;
  UniqueDescriptor descriptor_;
  std::uint64_t size_ = 0;
};

/// The only way to create, write, rename or remove a file: it asks the write policy before each operation.
/// A write is complete or has not happened: a reader sees the old content or the new, also after a crash or
/// on a full disk. Files get mode 0600, new folders 0700. Failures are told by the result, and logged once
/// with the reason unless the result is a FileFailure. Safe from any thread.
class AtomicFileWriter {
 public:
  AtomicFileWriter(std::shared_ptr<const KestrelWritePolicy> policy, Logger logger);

  /// Replaces the file's content; a symbolic link is followed, and its target replaced.
  [[nodiscard]] bool write(const std::filesystem::path& path, std::string_view content,
                           Durability durability = Durability::machine) const;
  /// The same for the exact file that a person has just chosen in a save dialog, for this one write, wherever
  /// it is but in other tools' configuration.
  [[nodiscard]] FileFailure writeChosen(const std::filesystem::path& chosen, std::string_view content) const;
  /// Creates an empty file unless there is one.
  [[nodiscard]] bool createIfMissing(const std::filesystem::path& path) const;
  /// Renames within a folder, replacing what stands at the new name.
  [[nodiscard]] bool moveAside(const std::filesystem::path& path, const std::filesystem::path& newPath) const;

  /// Like `write`, for content that is too large to be held at once. With a suffix, what the file replaces is
  /// kept beside it under its name and the suffix; when that cannot be done, it is not replaced. At every
  /// moment one of the two names leads to it.
  [[nodiscard]] FileFailure replace(const std::filesystem::path& path, const ContentProducer& produce,
                                    const std::string& keptSuffix = {}) const;
  /// Opens a file, made when missing, to append behind its first `validBytes`; the rest is cut off.
  [[nodiscard]] FileFailure openForAppending(const std::filesystem::path& path, std::uint64_t validBytes,
                                             AppendFile& file) const;
  /// No failure when there is none.
  [[nodiscard]] FileFailure remove(const std::filesystem::path& path) const;

 private:
  [[nodiscard]] FileFailure replaceAllowed(const std::filesystem::path& path, const ContentProducer& produce,
                                           const std::string& keptSuffix, Durability durability) const;
  /// The refusal of the write policy, if it refuses.
  [[nodiscard]] FileFailure refusal(const std::filesystem::path& path) const;

  std::shared_ptr<const KestrelWritePolicy> policy_;
  Logger logger_;
};

/// The whole content of a regular file of at most `maximumBytes`; absent when it cannot be read or is larger.
std::optional<std::string> readWholeFile(const std::filesystem::path& path, std::size_t maximumBytes);

}  // namespace kestrel
