#include "KestrelCore/Agents/ProcessMatching.h"

#include <algorithm>
#include <initializer_list>
#include <string>

namespace kestrel {
namespace {

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool containsAny(std::string_view text, std::initializer_list<std::string_view> parts) {
  return std::ranges::any_of(parts, [text](auto part) { return contains(text, part); });
}

/// "/claude" anywhere, or the name as a word of its own at the start or within.
bool namesProgram(std::string_view command, std::string_view withSlash, std::string_view leading,
                  std::string_view within) {
  return contains(command, withSlash) || command.starts_with(leading) || contains(command, within);
}

/// Whether a codex or opencode command line is a run of work rather than an idle front end.
bool runsAsProgram(std::string_view command, std::string_view verb, std::string_view ending,
                   std::string_view within) {
  return contains(command, verb) || command.ends_with(ending) || contains(command, within);
}

std::optional<bool> codex(std::string_view command) {
  if (containsAny(command,
                  {"Codex (Service)", "Codex (Renderer)", "Codex (GPU)", "app-server", "SkyComputerUse",
                   "codex-code-mode-host", "ChatGPT for Chrome", "ChatGPT.app", "plugins/openai-bundled"})) {
    return std::nullopt;
  }
  return runsAsProgram(command, "exec", "/codex", " codex ");
}

std::optional<bool> opencode(std::string_view command) {
  if (containsAny(command, {"--port", "serve"})) return false;
  return runsAsProgram(command, "run", "/opencode", " opencode ");
}

std::optional<bool> claude(std::string_view command) {
  if (isBareClaude(command)) return false;
  if (containsAny(command, {"auth login", "install", "--version"})) return std::nullopt;
  return true;
}

std::optional<bool> gemini(std::string_view command) {
  if (contains(command, "antigravity")) return std::nullopt;
  return true;
}

struct Recognised {
  AgentType agent;
  /// Absent for a line that is excluded.
  std::optional<bool> isWorking;
};

std::optional<Recognised> recognise(std::string_view command) {
  if (contains(command, "codex")) return Recognised{AgentType::codex, codex(command)};
  if (contains(command, "opencode")) return Recognised{AgentType::opencode, opencode(command)};
  if (isBareClaude(command) || namesProgram(command, "/claude", "claude ", " claude ")) {
    return Recognised{AgentType::claude, claude(command)};
  }
  if (namesProgram(command, "/gemini", "gemini ", " gemini "))
    return Recognised{AgentType::gemini, gemini(command)};
  if (contains(command, "aider")) return Recognised{AgentType::aider, true};
  return std::nullopt;
}

}  // namespace

bool mayBeAgent(std::string_view commandLine) {
  // "codex" and "opencode" both hold the first.
  return containsAny(commandLine, {"code", "claude", "gemini", "aider"});
}

bool isBareClaude(std::string_view commandLine) {
  return commandLine == "claude";
}

std::optional<ProcessMatch> matchCommandLine(const ProcessRow& process) {
  const std::string_view command = process.commandLine;
  if (!mayBeAgent(command)) return std::nullopt;
  if (containsAny(command, {"grep ", "ps -axo", "kestrel"})) return std::nullopt;
  const auto recognised = recognise(command);
  if (!recognised || !recognised->isWorking) return std::nullopt;
  return ProcessMatch{.agent = recognised->agent,
                      .pid = process.pid,
                      .name = std::string(displayName(recognised->agent)),
                      .isRunning = true,
                      .isWorking = *recognised->isWorking,
                      .command = process.commandLine};
}

}  // namespace kestrel
