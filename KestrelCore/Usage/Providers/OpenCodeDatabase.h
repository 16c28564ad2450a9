#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KestrelCore/Usage/Providers/FileStamp.h"

namespace kestrel {

/// OpenCode's database of messages, opened for each reading and only ever read. Nothing is created or changed
/// in its folder, whether OpenCode runs, ended or crashed. Not thread-safe.
class OpenCodeDatabase {
 public:
  struct Row {
    std::string id;
    std::string sessionId;
    /// Milliseconds since 1970.
    std::int64_t timeCreated = 0;
    /// A JSON object, if nothing is wrong.
    std::string data;
  };
  /// Longer messages are passed over.
  static constexpr int kMaximumDataBytes = 16 << 20;

  explicit OpenCodeDatabase(std::string path) : path_(std::move(path)) {}

  /// The newest messages that mention tokens, newest first, and after them those of the given ids that are
  /// not among them; without the ones that are known. Absent when the database did not change since it was
  /// last read, is missing, busy, or not what was expected.
  [[nodiscard]] std::optional<std::vector<Row>> read(
      const std::function<bool(const std::string& id)>& isKnown, const std::vector<std::string>& ids);

 private:
  struct Stamps {
    std::optional<FileStamp> database;
    std::optional<FileStamp> log;
    friend bool operator==(const Stamps&, const Stamps&) = default;
  };

  const std::string path_;
  Stamps lastRead_;
  /// A change within the resolution of the files' times would not show, so each is followed by one more look.
  bool isSettled_ = false;
};

}  // namespace kestrel
