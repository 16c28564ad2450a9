#include "KestrelCore/Power/KestrelWritePolicy.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace kestrel {
namespace {

using std::filesystem::path;

constexpr std::array kProhibitedBelowHome = {
    "/.codex",        "/.claude",   "/.claude.json", "/.gemini", "/.config/opencode",
    "/.cursor",       "/.windsurf", "/.antigravity", "/.zshrc",  "/.bashrc",
    "/.bash_profile", "/.profile",  "/.gitconfig",   "/.ssh"};

constexpr std::string_view kReason =
    "Path is outside Kestrel-owned directories. Third-party configuration modification is prohibited.";

/// Absolute, with "." and ".." folded and without a trailing slash; links stay as they are.
std::string lexical(const path& given) {
  std::error_code error;
  const path absolute = std::filesystem::absolute(given, error);
  std::string text = (error ? given : absolute).lexically_normal().string();
  while (text.size() > 1 && text.back() == '/') text.pop_back();
  return text;
}

/// The first component that is a link, which in a canonical path is one that leads nowhere yet.
std::optional<path> danglingLink(const path& canonical) {
  path walked;
  for (const auto& component : canonical) {
    walked /= component;
    std::error_code ignored;
    if (std::filesystem::is_symlink(std::filesystem::symlink_status(walked, ignored))) return walked;
  }
  return std::nullopt;
}

/// With every link resolved, also those whose target does not exist. Empty when the system cannot say, which
/// nothing allows.
std::string resolved(const path& given) {
  constexpr int kMaximumLinks = 40;
  // Not folded: ".." after a link leaves the link's target.
  std::error_code unknown;
  path candidate = std::filesystem::absolute(given, unknown);
  if (unknown) return {};
  for (int i = 0; i < kMaximumLinks; ++i) {
    std::error_code error;
    const path canonical = std::filesystem::weakly_canonical(candidate, error);
    if (error) return {};
    const auto link = danglingLink(canonical);
    if (!link) return lexical(canonical);
    const path target = std::filesystem::read_symlink(*link, error);
    if (error) return {};
    const path rest = canonical.lexically_relative(*link);
    candidate = (link->parent_path() / target) / rest;
  }
  return {};
}

bool startsWithAny(const std::string& text, const std::vector<std::string>& prefixes) {
  return std::ranges::any_of(prefixes, [&](const auto& prefix) { return text.starts_with(prefix); });
}

}  // namespace

KestrelWriteSecurityError::KestrelWriteSecurityError(std::string path, std::string reason)
    : std::runtime_error("Kestrel write security violation: Cannot write to '" + path +
                         "'. Reason: " + reason),
      path_(std::move(path)),
      reason_(std::move(reason)) {}

KestrelWritePolicy::KestrelWritePolicy(const Directories& directories, std::shared_ptr<LogSink> sink)
    : logger_(std::move(sink), "security") {
  const std::string home = lexical(directories.home);
  for (const char* entry : kProhibitedBelowHome) rules_.prohibited.push_back(home + entry);
  rules_.roots = {lexical(directories.applicationSupport) + "/Kestrel",
                  lexical(directories.logs) + "/Kestrel", lexical(directories.temporary)};
  for (const auto& prefix : directories.runtimePrefixes) rules_.roots.push_back(lexical(prefix));
  rules_.preferences = lexical(directories.preferences);
}

KestrelWritePolicy::Verdict KestrelWritePolicy::Rules::judge(const std::string& path, bool isChosen) const {
  if (path.empty()) return Verdict::outside;
  if (startsWithAny(path, prohibited)) return Verdict::prohibited;
  if (isChosen || startsWithAny(path, roots)) return Verdict::allowed;
  const bool ownPreference = path.starts_with(preferences) && path.find("com.kestrel") != std::string::npos;
  return ownPreference ? Verdict::allowed : Verdict::outside;
}

KestrelWritePolicy::Rules KestrelWritePolicy::resolvedRules() const {
  Rules rules;
  for (const auto& entry : rules_.prohibited) rules.prohibited.push_back(resolved(entry));
  for (const auto& root : rules_.roots) rules.roots.push_back(resolved(root));
  rules.preferences = resolved(rules_.preferences);
  // An entry that the system cannot resolve must not become the prefix of everything.
  std::erase(rules.prohibited, "");
  std::erase(rules.roots, "");
  if (rules.preferences.empty()) rules.preferences = rules_.preferences;
  return rules;
}

KestrelWritePolicy::Verdict KestrelWritePolicy::judge(const std::filesystem::path& path,
                                                      bool isChosen) const {
  const std::string spelled = lexical(path);
  Verdict verdict = rules_.judge(spelled, isChosen);
  if (verdict == Verdict::allowed) verdict = resolvedRules().judge(resolved(path), isChosen);
  if (verdict == Verdict::prohibited) {
    logger_.error("Blocked write attempt to prohibited path: {}", spelled);
  } else if (verdict == Verdict::outside) {
    logger_.error("Disallowed write to non-whitelisted path: {}", spelled);
  }
  return verdict;
}

bool KestrelWritePolicy::mayWrite(const std::filesystem::path& path) const {
  return judge(path, false) == Verdict::allowed;
}

bool KestrelWritePolicy::mayWriteChosen(const std::filesystem::path& chosen) const {
  return judge(chosen, true) == Verdict::allowed;
}

void KestrelWritePolicy::assertCanWrite(const std::filesystem::path& path) const {
  if (!mayWrite(path)) throw KestrelWriteSecurityError(lexical(path), std::string(kReason));
}

}  // namespace kestrel
