#include "KestrelCore/Agents/AgentFootprints.h"

#include <algorithm>
#include <cstddef>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

constexpr double kAntigravityWorkingSeconds = 30;
constexpr double kAntigravityWaitingSeconds = 180;
/// A session without a transcript yet does not hide the ones before it.
constexpr std::size_t kInspectedSessions = 3;

constexpr double kClaudeWorkingSeconds = 120;
constexpr std::size_t kRememberedTranscripts = 8;
constexpr double kLookIntervalSeconds = 5;
/// A walk over all of Claude's folders costs some microseconds per file: the more there are, the rarer it is.
constexpr double kLongestWalkInterval = 60;
constexpr double kWalkedFilesPerSecond = 100;
/// Modification times can lag a little behind the clock.
constexpr double kTimestampSlackSeconds = 1;

/// A file from further in the future than clocks differ says nothing: it would look fresh for ever.
constexpr double kFutureToleranceSeconds = 60;

std::optional<Date> modificationDate(const fs::path& path, bool ofFolder = false) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode) != ofFolder) return std::nullopt;
  return Date::since1970(static_cast<double>(status.st_mtime));
}

std::vector<std::pair<Date, fs::path>> datedFolders(const fs::path& parent) {
  std::vector<std::pair<Date, fs::path>> folders;
  std::error_code error;
  for (fs::directory_iterator entry(parent, error), end; !error && entry != end; entry.increment(error)) {
    if (const auto date = modificationDate(entry->path(), true)) folders.emplace_back(*date, entry->path());
  }
  return folders;
}

/// Seconds since the last write to a transcript of one of the newest sessions.
std::optional<double> antigravityAge(const fs::path& sessions, Date now) {
  auto folders = datedFolders(sessions);
  std::ranges::sort(folders, [](const auto& a, const auto& b) { return a.first > b.first; });
  folders.resize(std::min(folders.size(), kInspectedSessions));
  std::optional<double> youngest;
  for (const auto& [date, folder] : folders) {
    const auto written = modificationDate(folder / ".system_generated/logs/transcript.jsonl");
    if (!written || now - *written < -kFutureToleranceSeconds) continue;
    youngest = std::min(youngest.value_or(now - *written), now - *written);
  }
  return youngest;
}

}  // namespace

AgentFootprints::AgentFootprints(const fs::path& home)
    : antigravitySessions_(home / ".gemini/antigravity/brain"), claudeProjects_(home / ".claude/projects") {}

AntigravityState AgentFootprints::antigravityState(bool isRunning, Date now) const {
  if (!isRunning) return {false, false, false, "Not running"};
  const auto age = antigravityAge(antigravitySessions_, now);
  if (age && *age < kAntigravityWorkingSeconds) return {true, true, false, "Antigravity Agent (Active)"};
  if (age && *age < kAntigravityWaitingSeconds) return {true, false, true, "Antigravity IDE (Waiting)"};
  return {true, false, false, "Antigravity IDE (Idle)"};
}

bool AgentFootprints::isClaudeWriting(Date now) {
  for (auto& [written, path] : newest_) written = modificationDate(path).value_or(written);
  if (hasFreshTranscript(now)) return true;
  const bool clockWentBack = lastLook_ && now < *lastLook_;
  if (lastLook_ && !clockWentBack && now - *lastLook_ < kLookIntervalSeconds) return false;
  lastLook_ = now;
  if (!isWalkDue(now)) return false;
  walkClaudeProjects(now);
  return hasFreshTranscript(now);
}

bool AgentFootprints::isWalkDue(Date now) const {
  if (!lastWalk_ || now < *lastWalk_ || now - *lastWalk_ >= walkIntervalSeconds_) return true;
  // A new transcript shows in the folder of its project.
  const Date newSince = *lastWalk_ - kTimestampSlackSeconds;
  return std::ranges::any_of(datedFolders(claudeProjects_),
                             [newSince](const auto& folder) { return folder.first >= newSince; });
}

bool AgentFootprints::hasFreshTranscript(Date now) const {
  return std::ranges::any_of(newest_, [now](const Transcript& transcript) {
    const double age = now - transcript.written;
    return age <= kClaudeWorkingSeconds && age >= -kFutureToleranceSeconds;
  });
}

void AgentFootprints::walkClaudeProjects(Date now) {
  newest_.clear();
  std::size_t files = 0;
  std::error_code error;
  const auto options = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator entry(claudeProjects_, options, error), end; !error && entry != end;
       entry.increment(error)) {
    ++files;
    if (entry->path().extension() != ".jsonl") continue;
    const auto written = modificationDate(entry->path());
    const bool isFromTheFuture = written && now - *written < -kFutureToleranceSeconds;
    if (written && !isFromTheFuture) remember({*written, entry->path()});
  }
  lastWalk_ = now;
  walkIntervalSeconds_ = std::min(static_cast<double>(files) / kWalkedFilesPerSecond, kLongestWalkInterval);
}

void AgentFootprints::remember(Transcript transcript) {
  const auto place = std::ranges::find_if(
      newest_, [&](const Transcript& each) { return each.written < transcript.written; });
  if (place == newest_.end() && newest_.size() >= kRememberedTranscripts) return;
  newest_.insert(place, std::move(transcript));
  newest_.resize(std::min(newest_.size(), kRememberedTranscripts));
}

}  // namespace kestrel
