#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// One process of the machine.
struct ProcessRow {
  std::int32_t pid = 0;
  /// Absent where the listing does not tell.
  std::optional<std::int32_t> parentPid;
  /// The words of its command line, joined by blanks. Text from outside, in UTF-8 and cut at a length of the
  /// backend's choice.
  std::string commandLine;

  friend bool operator==(const ProcessRow&, const ProcessRow&) = default;
};

/// The running processes. Used from the process monitor's queue only; may block for as long as a listing
/// takes.
class ProcessList {
 public:
  virtual ~ProcessList() = default;
  /// In the system's order; absent when the system gives no listing.
  [[nodiscard]] virtual std::optional<std::vector<ProcessRow>> rows() = 0;
  /// Where the list comes from, for people; absent when there is none. From any thread.
  [[nodiscard]] virtual std::optional<std::string> sourceName() const = 0;
};

}  // namespace kestrel
