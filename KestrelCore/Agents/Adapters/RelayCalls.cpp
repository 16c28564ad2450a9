#include "KestrelCore/Agents/Adapters/RelayCalls.h"

#include <fmt/format.h>

#include "KestrelCore/Support/Json.h"

namespace kestrel {

std::string shellWord(std::string_view text) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+,:@%";
  if (!text.empty() && text.find_first_not_of(kPlain) == std::string_view::npos) return std::string(text);
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

std::string stringLiteral(std::string_view text) {
  return dumpJson(Json(text));
}

std::string relayCommand(std::string_view relayBinaryPath, std::string_view agent) {
  return fmt::format("{} --agent {} --state auto", shellWord(relayBinaryPath), agent);
}

std::string hooksDocument(std::initializer_list<std::string_view> events, std::string_view command,
                          int timeout) {
  std::string lines;
  for (const auto event : events) {
    lines += lines.empty() ? "" : ",\n";
    lines +=
        fmt::format(R"(    "{}": [{{ "hooks": [{{ "type": "command", "command": {}, "timeout": {} }}] }}])",
                    event, stringLiteral(command), timeout);
  }
  return "{\n  \"hooks\": {\n" + lines + "\n  }\n}";
}

}  // namespace kestrel
