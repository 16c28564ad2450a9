#include "KestrelCore/Support/AtomicFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Support/PrivateFolder.h"
#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {
namespace {

using std::filesystem::path;

std::string reasonOf(int code) {
  return std::generic_category().message(code);
}

/// Absent for error 0.
FileFailure failure(const char* what, const path& path, int error) {
  if (error == 0) return std::nullopt;
  return fmt::format("Cannot {} {}: {} ({})", what, path.string(), reasonOf(error), error);
}

/// Returns 0 or errno.
int writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = ::write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

int writePieces(int descriptor, const ContentProducer& produce, Durability durability) {
  int error = 0;
  produce([&](std::string_view piece) {
    if (error == 0) error = writeAll(descriptor, piece);
  });
  if (error != 0 || durability == Durability::process) return error;
  return ::fsync(descriptor) == 0 ? 0 : errno;
}

/// Gives the file a second name, or, where the file system or its owner does not allow that, another one.
int keepOld(const path& target, const std::string& suffix) {
  if (suffix.empty()) return 0;
  const std::string kept = target.string() + suffix;
  if (::link(target.c_str(), kept.c_str()) == 0 || errno == ENOENT) return 0;
  if (errno == EEXIST) return errno;
  return ::rename(target.c_str(), kept.c_str()) == 0 ? 0 : errno;
}

/// Makes a rename in the folder survive a crash; not every file system can, so the result does not matter.
void syncFolder(const path& folder) {
  const UniqueDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor) (void)::fsync(descriptor.get());
}

/// Writes the content to a new file beside the target and renames it. Returns 0 or errno.
int replaceFile(const path& target, const ContentProducer& produce, const std::string& keptSuffix,
                Durability durability) {
  std::string temporary = target.string() + ".XXXXXX";
  UniqueDescriptor descriptor(::mkostemp(temporary.data(), O_CLOEXEC));  // Mode 0600.
  if (!descriptor) return errno;
  int error = writePieces(descriptor.get(), produce, durability);
  descriptor.reset();
  if (error == 0) error = keepOld(target, keptSuffix);
  if (error == 0 && ::rename(temporary.c_str(), target.c_str()) != 0) error = errno;
  if (error != 0) ::unlink(temporary.c_str());
  if (error == 0 && durability == Durability::machine) syncFolder(target.parent_path());
  return error;
}

/// The file that a path stands for, also behind links whose target does not exist yet.
path followLinks(const path& given) {
  constexpr int kMaximumLinks = 40;
  std::error_code error;
  std::error_code absent;
  path target = std::filesystem::weakly_canonical(given, error);
  for (int i = 0; i < kMaximumLinks && !error; ++i) {
    if (!std::filesystem::is_symlink(std::filesystem::symlink_status(target, absent))) return target;
    const path next = target.parent_path() / std::filesystem::read_symlink(target, error);
    if (!error) target = std::filesystem::weakly_canonical(next, error);
  }
  return given;
}

}  // namespace

AtomicFileWriter::AtomicFileWriter(std::shared_ptr<const KestrelWritePolicy> policy, Logger logger)
    : policy_(std::move(policy)), logger_(std::move(logger)) {}

bool AtomicFileWriter::write(const path& path, std::string_view content, Durability durability) const {
  if (!policy_->mayWrite(path)) return false;
  const auto failed = replaceAllowed(
      path, [&](const auto& append) { append(content); }, {}, durability);
  if (failed) logger_.error("{}", *failed);
  return !failed;
}

FileFailure AtomicFileWriter::writeChosen(const path& chosen, std::string_view content) const {
  FileFailure failed;
  if (!policy_->mayWriteChosen(chosen)) {
    failed = fmt::format("Cannot write {}: it belongs to another program's settings", chosen.string());
  } else {
    failed = replaceAllowed(
        chosen, [&](const auto& append) { append(content); }, {}, Durability::machine);
  }
  if (failed) logger_.error("{}", *failed);
  return failed;
}

FileFailure AtomicFileWriter::replace(const path& path, const ContentProducer& produce,
                                      const std::string& keptSuffix) const {
  if (auto refused = refusal(path)) return refused;
  return replaceAllowed(path, produce, keptSuffix, Durability::machine);
}

FileFailure AtomicFileWriter::replaceAllowed(const path& path, const ContentProducer& produce,
                                             const std::string& keptSuffix, Durability durability) const {
  const auto target = followLinks(path);
  if (!keptSuffix.empty()) {
    if (auto refused = refusal(target.string() + keptSuffix)) return refused;
  }
  int error = createPrivateFolders(target.parent_path());
  if (error == 0) error = replaceFile(target, produce, keptSuffix, durability);
  return failure("write", path, error);
}

FileFailure AtomicFileWriter::openForAppending(const path& path, std::uint64_t validBytes,
                                               AppendFile& file) const {
  file.close();
  if (auto refused = refusal(path)) return refused;
  if (const int error = createPrivateFolders(path.parent_path()); error != 0) {
    return failure("open", path, error);
  }
  UniqueDescriptor descriptor(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
  struct stat status {};
  if (!descriptor || ::fstat(descriptor.get(), &status) != 0) return failure("open", path, errno);
  if (!S_ISREG(status.st_mode)) return failure("open", path, EINVAL);
  const auto size = std::min(validBytes, static_cast<std::uint64_t>(status.st_size));
  if (::ftruncate(descriptor.get(), static_cast<off_t>(size)) != 0) return failure("shorten", path, errno);
  file.path_ = path;
  file.descriptor_ = std::move(descriptor);
  file.size_ = size;
  return std::nullopt;
}

FileFailure AtomicFileWriter::remove(const path& path) const {
  if (auto refused = refusal(path)) return refused;
  if (::unlink(path.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) {
    return failure("remove", path, errno);
  }
  syncFolder(path.parent_path());
  return std::nullopt;
}

FileFailure AtomicFileWriter::refusal(const path& path) const {
  try {
    policy_->assertCanWrite(path);
  } catch (const KestrelWriteSecurityError& error) {
    return error.errorDescription();
  }
  return std::nullopt;
}

FileFailure AppendFile::append(std::string_view bytes) {
  struct stat status {};
  int error = !descriptor_ ? EBADF : ::fstat(descriptor_.get(), &status) != 0 ? errno : 0;
  if (error == 0 && status.st_nlink == 0) error = ENOENT;
  if (error == 0) {
    error = writeAll(descriptor_.get(), bytes);
    if (error == 0) {
      size_ += bytes.size();
      return std::nullopt;
    }
    if (::ftruncate(descriptor_.get(), static_cast<off_t>(size_)) == 0) {
      return failure("append to", path_, error);
    }
  }
  close();
  return failure("append to", path_, error);
}

void AppendFile::close() {
  descriptor_.reset();
  size_ = 0;
}

bool AtomicFileWriter::createIfMissing(const path& path) const {
  if (!policy_->mayWrite(path)) return false;
  int error = createPrivateFolders(path.parent_path());
  if (error == 0) {
    const UniqueDescriptor descriptor(
        ::open(path.c_str(), O_RDONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!descriptor) error = errno;
  }
  if (error != 0) logger_.error("Cannot create {}: {} ({})", path.string(), reasonOf(error), error);
  return error == 0;
}

bool AtomicFileWriter::moveAside(const path& path, const std::filesystem::path& newPath) const {
  if (!policy_->mayWrite(path) || !policy_->mayWrite(newPath)) return false;
  if (::rename(path.c_str(), newPath.c_str()) == 0) return true;
  const int error = errno;
  logger_.error("Cannot move {} to {}: {} ({})", path.string(), newPath.string(), reasonOf(error), error);
  return false;
}

std::optional<std::string> readWholeFile(const path& path, std::size_t maximumBytes) {
  const UniqueDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!descriptor || ::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  if (static_cast<std::size_t>(status.st_size) > maximumBytes) return std::nullopt;
  std::string content(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t length = 0;
  while (length < content.size()) {
    const ssize_t count = ::read(descriptor.get(), content.data() + length, content.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  content.resize(length);
  return content;
}

}  // namespace kestrel
