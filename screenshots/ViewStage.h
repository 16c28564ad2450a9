#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "screenshots/Stage.h"

#include "KestrelApp/ViewContext.h"
#include "KestrelCore/Presentation/AgentInspection.h"
#include "KestrelCore/Presentation/DismissedAlerts.h"
#include "KestrelCore/Presentation/ExportToFile.h"
#include "KestrelCore/Presentation/OnboardingTrial.h"

namespace kestrel {

/// A stage with what the windows need. The agents that are installed on its machine are real programs in a
/// folder of its own, which tell a version.
class ViewStage {
 public:
  explicit ViewStage(const Stage::Machine& machine = {});

  [[nodiscard]] Stage& stage() { return stage_; }
  [[nodiscard]] ViewContext& context() { return context_; }
  /// Where the stage's programs stand.
  [[nodiscard]] std::filesystem::path programs();
  /// Before the first check.
  void install(const std::string& program, const std::string& version);
  /// Writes a file below the home folder.
  void writeHome(const std::filesystem::path& name, const std::string& content);
  /// Looks for the agents, and waits for the answer.
  void inspect();

 private:
  Stage stage_;
  AgentInspection inspection_;
  OnboardingTrial trial_;
  ExportToFile exporter_;
  const SystemLocalCalendar calendar_;
  DismissedAlerts dismissed_;
  ViewContext context_;
};

/// Claude Code that reports, Codex that could, and Cursor, all installed and at work.
void playInstalledAgents(ViewStage& views);

}  // namespace kestrel
