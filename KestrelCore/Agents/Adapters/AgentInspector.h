#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Agents/Adapters/AdapterEnvironment.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// Looks at agents' files and executables and changes nothing. What cannot be read counts as not there, with
/// a line in the log. Safe from any thread.
class AgentInspector {
 public:
  static constexpr double kVersionTimeoutSeconds = 3;
  static constexpr std::size_t kMaximumVersionBytes = 4096;
  static constexpr std::size_t kMaximumConfigurationBytes = 16 * 1024 * 1024;

  explicit AgentInspector(AdapterEnvironment environment);

  [[nodiscard]] const std::filesystem::path& home() const { return environment_.home; }
  /// A fixed absolute path, below the root.
  [[nodiscard]] std::filesystem::path rooted(std::string_view fixedPath) const;
  [[nodiscard]] bool isRunning(AgentType agent) const;

  /// The first executable of that name in the search path, else the fixed path, unless empty, when there is
  /// an executable. Empty and relative entries of the search path are skipped: what they name depends on the
  /// current directory.
  [[nodiscard]] std::optional<std::filesystem::path> findExecutable(std::string_view name,
                                                                    std::string_view fixedPath = {}) const;
  /// What the executable prints when asked for its version, trimmed. Blocks for up to 3 s.
  [[nodiscard]] std::optional<std::string> version(const std::filesystem::path& executable) const;

  /// Whether a file's text calls the relay.
  [[nodiscard]] bool textMentionsRelay(const std::filesystem::path& file) const;
  /// Whether a JSON file is an object whose member "hooks" calls the relay.
  [[nodiscard]] bool hooksMentionRelay(const std::filesystem::path& file) const;

  [[nodiscard]] static bool exists(const std::filesystem::path& path);

 private:
  [[nodiscard]] std::optional<std::string> read(const std::filesystem::path& file) const;

  const AdapterEnvironment environment_;
  const Logger logger_;
};

}  // namespace kestrel
