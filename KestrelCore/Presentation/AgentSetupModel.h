#pragma once

#include <string>
#include <vector>

#include "KestrelCore/Presentation/AgentInspection.h"

namespace kestrel {

/// Something to paste and what to do with it.
struct SetupSnippet {
  /// "For Claude Code 2.1", "Classic".
  std::string title;
  /// The file; empty when the steps say it.
  std::string where;
  /// To be shown as it is, and copied.
  std::string text;
  /// One line each.
  std::vector<std::string> steps;
  /// How to take it back; may be empty.
  std::string undo;

  friend bool operator==(const SetupSnippet&, const SetupSnippet&) = default;
};

/// The sheet that says how an agent is made to report.
struct AgentSetupModel {
  /// "Set up Claude Code".
  std::string title;
  /// What will happen, or why nothing is to be done.
  std::string introduction;
  /// The best first, the classic one last; empty when nothing is to be done, or can be.
  std::vector<SetupSnippet> snippets;

  friend bool operator==(const AgentSetupModel&, const AgentSetupModel&) = default;
};

AgentSetupModel agentSetupModel(const AgentInspection& inspection, AgentType agent);

}  // namespace kestrel
