#include "KestrelApp/CommandLine.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include "KestrelCore/Control/StatusReport.h"

namespace kestrel {
namespace {

constexpr const char* kHelp =
    "Kestrel 0.4.0 — Smart sleep prevention for coding agents\n"
    "Usage: Kestrel [options]\n"
    "Options:\n"
    "  -v, --version    Print version and exit\n"
    "  -h, --help       Print help and exit\n";

constexpr std::string_view kPlainCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+=@%:,";

std::string quotedForShell(const std::string& text) {
  if (text.find_first_not_of(kPlainCharacters) == std::string::npos) return text;
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

}  // namespace

std::optional<std::string> answerToOptions(const std::vector<std::string>& arguments) {
  const auto given = [&](std::string_view shortName, std::string_view longName) {
    return std::ranges::any_of(arguments, [&](const std::string& argument) {
      return argument == shortName || argument == longName;
    });
  };
  if (given("-v", "--version")) return "Kestrel " + std::string(kKestrelVersion) + "\n";
  if (given("-h", "--help")) return kHelp;
  return std::nullopt;
}

bool printAnswerToOptions(const std::vector<std::string>& arguments) {
  const auto answer = answerToOptions(arguments);
  if (answer) std::fputs(answer->c_str(), stdout);
  return answer.has_value();
}

std::string siblingCommand(const std::string& ownPath, const std::string& name) {
  const std::size_t slash = ownPath.find_last_of('/');
  return slash == std::string::npos ? name : quotedForShell(ownPath.substr(0, slash + 1) + name);
}

}  // namespace kestrel
