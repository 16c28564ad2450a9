#include "KestrelCore/Agents/Adapters/AgentInspector.h"

#include <algorithm>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/ChildProcess.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Support/Utf8.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kRelay = "kestrel-relay";

bool isExecutable(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n\v\f";
  const auto start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

}  // namespace

AgentInspector::AgentInspector(AdapterEnvironment environment)
    : environment_(std::move(environment)), logger_(environment_.logSink, "agents") {}

fs::path AgentInspector::rooted(std::string_view fixedPath) const {
  return environment_.root / fs::path(fixedPath).relative_path();
}

bool AgentInspector::isRunning(AgentType agent) const {
  return environment_.isRunning && environment_.isRunning(agent);
}

std::optional<fs::path> AgentInspector::findExecutable(std::string_view name,
                                                       std::string_view fixedPath) const {
  std::string_view rest = environment_.searchPath;
  while (!rest.empty()) {
    const std::string_view folder = rest.substr(0, rest.find(':'));
    rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
    if (!folder.starts_with('/')) continue;
    fs::path candidate = fs::path(folder) / name;
    if (isExecutable(candidate)) return candidate;
  }
  if (fixedPath.empty() || !isExecutable(rooted(fixedPath))) return std::nullopt;
  return rooted(fixedPath);
}

std::optional<std::string> AgentInspector::version(const fs::path& executable) const {
  const auto result =
      runChildProcess({executable.native(), "--version"}, {kVersionTimeoutSeconds, kMaximumVersionBytes});
  if (!result || result->outputWasCut) {
    logger_.error("{} tells no version: {}", executable.native(),
                  result ? "it prints too much" : "it does not start, or does not end in time");
    return std::nullopt;
  }
  if (result->status != 0) {
    logger_.error("{} tells no version: it ended with status {}", executable.native(), result->status);
    return std::nullopt;
  }
  std::string text(trimmed(result->output));
  if (text.empty()) return std::nullopt;
  makeUtf8(text);
  return text;
}

bool AgentInspector::textMentionsRelay(const fs::path& file) const {
  const auto text = read(file);
  return text && contains(*text, kRelay);
}

bool AgentInspector::hooksMentionRelay(const fs::path& file) const {
  const auto text = read(file);
  // Spares the parser, unless the name may be written with escapes.
  if (!text || !(contains(*text, kRelay) || contains(*text, "\\u"))) return false;
  try {
    const Json json = parseJson(*text);
    if (!json.is_object()) return false;
    const auto hooks = json.find("hooks");
    return hooks != json.end() && contains(dumpJson(*hooks), kRelay);
  } catch (const DecodingError& error) {
    logger_.error("Cannot understand {}: {}", file.native(), error.what());
    return false;
  }
}

bool AgentInspector::exists(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error);
}

std::optional<std::string> AgentInspector::read(const fs::path& file) const {
  auto text = readWholeFile(file, kMaximumConfigurationBytes);
  if (!text && exists(file)) {
    logger_.error("Cannot read {}: it is not readable, no plain file, or larger than {} MB", file.native(),
                  kMaximumConfigurationBytes / 1024 / 1024);
  }
  return text;
}

}  // namespace kestrel
