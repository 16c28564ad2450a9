#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>

#include "KestrelCore/Usage/UsageLedger.h"

namespace kestrel {

/// The file format of the usage store: one JSON object with `schemaVersion` 1, `events`, `sessions` by
/// session id, and `seenKeys`. The layout before it has no `schemaVersion` (or, there, anything but a whole
/// number).
class UsageStoreFile {
 public:
  /// Larger files count as unusable.
  static constexpr std::uint64_t kMaximumBytes = std::uint64_t{4} << 30;

  enum class Found {
    nothing,
    schema,
    legacy,
    /// Cannot be read or decoded, or holds counts whose sums do not fit.
    unusable
  };
  struct Content {
    Found found = Found::nothing;
    /// As the file says; 0 without one.
    std::int64_t schemaVersion = 0;
    std::uint64_t bytes = 0;
    /// Empty unless something usable was found.
    UsageLedger ledger;
  };

  /// Reads in pieces: what it takes beside the ledger does not depend on the file's size.
  [[nodiscard]] static Content load(const std::filesystem::path& path);
  /// Writes in pieces.
  static void save(const UsageLedger& ledger, const std::function<void(std::string_view)>& append);
};

}  // namespace kestrel
