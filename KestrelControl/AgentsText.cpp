#include "KestrelControl/AgentsText.h"

#include <fmt/format.h>

#include "KestrelControl/StatusText.h"
#include "KestrelCore/Agents/IntegrationType.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

std::string textOf(const Json& object, std::string_view key) {
  return optionalString(object, key).value_or("");
}

std::string agentText(const Json& agent) {
  const std::string version = printable(textOf(agent, "agentVersion"));
  std::string line = fmt::format("{:<13}  {:<33}  {}", textOf(agent, "displayName"),
                                 textOf(agent, "statusMessage"), version);
  line.erase(line.find_last_not_of(' ') + 1);
  const bool canBeSetUp = agent["integrationType"] != rawValue(IntegrationType::process);
  if (canBeSetUp && agent["isInstalled"] == true && agent["isIntegrationActive"] == false)
    line += fmt::format("\n{:15}kestrelctl setup {}", "", textOf(agent, "agentType"));
  return line + "\n";
}

std::string stepsText(const Json& setup) {
  return fmt::format("{} - {}\n\n{}\n\n{}\n\nTo undo it: {}\n", textOf(setup, "versions"),
                     textOf(setup, "where"), textOf(setup, "how"), textOf(setup, "what"),
                     textOf(setup, "undo"));
}

}  // namespace

std::string agentsText(const Json& report) {
  std::string text;
  for (const auto& agent : report["agents"]) text += agentText(agent);
  return text;
}

std::string setupText(const Json& report) {
  const std::string snippet = textOf(report, "snippet");
  if (report.contains("instructions"))
    return textOf(report, "instructions") + "\n" + (snippet.empty() ? "" : "\n" + snippet + "\n");
  std::string text;
  for (const auto& setup : report["setups"]) {
    if (!text.empty()) text += "\nElse:\n\n";
    text += stepsText(setup);
  }
  return text + "\nFor older versions: kestrelctl setup " + textOf(report, "agentType") + " --classic\n";
}

}  // namespace kestrel
