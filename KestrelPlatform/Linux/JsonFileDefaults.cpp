#include "KestrelPlatform/Linux/JsonFileDefaults.h"

#include <cerrno>
#include <cmath>
#include <limits>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {
namespace {

/// Tells one version of the file from another. A missing file is a version too.
struct Stamp {
  ino_t inode = 0;
  off_t size = -1;
  std::int64_t modified = 0;  // Nanoseconds.

  friend bool operator==(const Stamp&, const Stamp&) = default;
};

struct Version {
  Stamp stamp;
  Json values = Json::object();
  /// Why the file reads as empty although there is one.
  std::string fault;
};

Version describe(const std::filesystem::path& path) {
  Version version;
  struct stat status {};
  if (::stat(path.c_str(), &status) == 0) {
    const auto& modified = status.st_mtim;
    version.stamp = {status.st_ino, status.st_size,
                     modified.tv_sec * std::int64_t{1'000'000'000} + modified.tv_nsec};
    if (!S_ISREG(status.st_mode)) version.fault = "it is no regular file";
  } else if (errno != ENOENT && errno != ENOTDIR) {
    version.stamp.size = -errno - 1;  // No file has it, and a new error is a new version.
    version.fault = std::generic_category().message(errno);
  }
  return version;
}

void readValues(Version& version, const std::filesystem::path& path) {
  const bool missing = version.stamp == Stamp{};
  if (missing || !version.fault.empty()) return;
  const auto content = readWholeFile(path, JsonFileDefaults::kMaximumBytes);
  if (!content) {
    version.fault = version.stamp.size > static_cast<off_t>(JsonFileDefaults::kMaximumBytes)
                        ? "it is larger than 1 MiB"
                        : "it cannot be opened";
    return;
  }
  try {
    version.values = parseJsonObject(*content);
  } catch (const DecodingError& error) {
    version.fault = error.what();
  }
}

/// Laid out for people, who may edit it.
std::string fileText(const Json& values) {
  return values.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

/// "20261121T032705Z".
std::string fileTimestamp(Date date) {
  std::string text = iso8601(date).substr(0, sizeof("2026-11-21T03:27:05") - 1);
  std::erase_if(text, [](char c) { return c == '-' || c == ':'; });
  return text + "Z";
}

}  // namespace

/// The file and what was last read from it. Shared with observers' timers, which may outlive the defaults.
class JsonFileDefaults::File {
 public:
  File(std::filesystem::path path, std::shared_ptr<const AtomicFileWriter> files,
       std::shared_ptr<const Clock> clock, Logger logger)
      : path_(std::move(path)),
        files_(std::move(files)),
        clock_(std::move(clock)),
        logger_(std::move(logger)) {}

  [[nodiscard]] std::optional<Json> value(std::string_view key) {
    refresh();
    const LockGuard lock(mutex_);
    const auto found = current_.values.find(key);
    if (found == current_.values.end()) return std::nullopt;
    return *found;
  }

  /// Sets a key, or removes it. Main thread.
  [[nodiscard]] bool change(std::string_view key, const std::optional<Json>& value) {
    refresh();
    LockGuard lock(mutex_);
    Json values = current_.values;
    const bool faulty = !current_.fault.empty();
    const std::string oldText = fileText(values);
    lock.unlock();

    if (value) {
      values[std::string(key)] = *value;
    } else {
      values.erase(std::string(key));
    }
    const std::string text = fileText(values);
    if (text == oldText) return true;
    return (faulty ? replaceFaultyFile(text) : files_->write(path_, text)) && noteOwnWrite(text);
  }

  [[nodiscard]] std::optional<std::string> problem() {
    refresh();
    const LockGuard lock(mutex_);
    if (current_.fault.empty()) return std::nullopt;
    return current_.fault;
  }

  /// Counts the changes of values that others made.
  [[nodiscard]] std::uint64_t outsideChanges() {
    refresh();
    const LockGuard lock(mutex_);
    return outsideChanges_;
  }

 private:
  /// Reads the file when it is another version than the one in memory. The log is written after the lock is
  /// released.
  void refresh() {
    LockGuard lock(mutex_);
    Version version = describe(path_);
    if (wasRead_ && version.stamp == current_.stamp) return;
    readValues(version, path_);
    if (wasRead_ && version.values != current_.values) ++outsideChanges_;
    wasRead_ = true;
    current_ = std::move(version);
    const std::string fault = current_.fault;
    lock.unlock();
    if (!fault.empty()) {
      logger_.error("Using default settings, because {} cannot be used: {}", path_.string(), fault);
    }
  }

  bool replaceFaultyFile(const std::string& text) {
    const std::filesystem::path aside = path_.string() + ".unreadable-" + fileTimestamp(clock_->now());
    if (!files_->moveAside(path_, aside)) return false;
    if (files_->write(path_, text)) {
      logger_.info("Moved the unusable settings file to {} and wrote a new one", aside.string());
      return true;
    }
    (void)files_->moveAside(aside, path_);
    return false;
  }

  /// What stands there now is no outside change, unless somebody was quicker than this look.
  bool noteOwnWrite(const std::string& text) {
    const LockGuard lock(mutex_);
    Version version = describe(path_);
    readValues(version, path_);
    if (fileText(version.values) != text) ++outsideChanges_;
    current_ = std::move(version);
    return true;
  }

  const std::filesystem::path path_;
  const std::shared_ptr<const AtomicFileWriter> files_;
  const std::shared_ptr<const Clock> clock_;
  const Logger logger_;
  Mutex mutex_{LockRank::leaf};
  bool wasRead_ KESTREL_GUARDED_BY(mutex_) = false;
  Version current_ KESTREL_GUARDED_BY(mutex_);
  std::uint64_t outsideChanges_ KESTREL_GUARDED_BY(mutex_) = 0;
};

JsonFileDefaults::JsonFileDefaults(std::filesystem::path path, Executor& mainExecutor,
                                   std::shared_ptr<const AtomicFileWriter> files,
                                   std::shared_ptr<const Clock> clock, Logger logger)
    : mainExecutor_(mainExecutor),
      file_(std::make_shared<File>(std::move(path), std::move(files), std::move(clock), std::move(logger))) {}

JsonFileDefaults::~JsonFileDefaults() = default;

std::optional<bool> JsonFileDefaults::boolForKey(std::string_view key) const {
  const auto value = file_->value(key);
  if (!value || !value->is_boolean()) return std::nullopt;
  return value->get<bool>();
}

std::optional<std::int64_t> JsonFileDefaults::integerForKey(std::string_view key) const {
  const auto value = file_->value(key);
  if (!value || !value->is_number_integer()) return std::nullopt;
  constexpr auto kMaximum = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (value->is_number_unsigned() && value->get<std::uint64_t>() > kMaximum) return std::nullopt;
  return value->get<std::int64_t>();
}

std::optional<double> JsonFileDefaults::doubleForKey(std::string_view key) const {
  const auto value = file_->value(key);
  if (!value || !value->is_number()) return std::nullopt;
  return value->get<double>();
}

std::optional<Date> JsonFileDefaults::dateForKey(std::string_view key) const {
  const auto seconds = doubleForKey(key);
  if (!seconds) return std::nullopt;
  return Date::sinceReferenceDate(*seconds);
}

bool JsonFileDefaults::setBool(std::string_view key, bool value) {
  return file_->change(key, value);
}

bool JsonFileDefaults::setInteger(std::string_view key, std::int64_t value) {
  return file_->change(key, value);
}

bool JsonFileDefaults::setDouble(std::string_view key, double value) {
  return std::isfinite(value) && file_->change(key, value);
}

bool JsonFileDefaults::setDate(std::string_view key, Date value) {
  return setDouble(key, value.secondsSinceReferenceDate());
}

bool JsonFileDefaults::remove(std::string_view key) {
  return file_->change(key, std::nullopt);
}

std::optional<std::string> JsonFileDefaults::problem() const {
  return file_->problem();
}

RegistrationPtr JsonFileDefaults::observeOutsideChanges(std::function<void()> onChange) {
  auto look = [file = file_, seen = file_->outsideChanges(), onChange = std::move(onChange)]() mutable {
    const std::uint64_t before = std::exchange(seen, file->outsideChanges());
    if (seen != before) onChange();
  };
  return mainExecutor_.repeat(kObservationInterval, kObservationInterval, std::move(look));
}

}  // namespace kestrel
