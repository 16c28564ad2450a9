#include "screenshots/ViewStage.h"

#include <fstream>
#include <thread>

#include "screenshots/Sessions.h"

#include "KestrelCore/Presentation/AgentsModel.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

fs::path homeOf(Stage& stage) {
  return stage.app().directories().home;
}

fs::path programsOf(Stage& stage) {
  return homeOf(stage) / "bin";
}

AdapterEnvironment environmentOf(Stage& stage) {
  AdapterEnvironment environment;
  // Nothing of the machine that this runs on.
  environment.root = homeOf(stage) / "root";
  environment.home = homeOf(stage);
  environment.searchPath = programsOf(stage).string();
  return environment;
}

/// The relay has to be there before it is looked for.
void installProgram(const fs::path& path, const std::string& version) {
  fs::create_directories(path.parent_path());
  std::ofstream(path) << "#!/bin/sh\necho " << version << "\n";
  fs::permissions(path, fs::perms::owner_all);
}

fs::path withRelay(Stage& stage) {
  installProgram(programsOf(stage) / "kestrel-relay", "1.0.0");
  return programsOf(stage);
}

}  // namespace

ViewStage::ViewStage(const Stage::Machine& machine)
    : stage_(machine),
      inspection_(environmentOf(stage_), withRelay(stage_), stage_.executor(),
                  std::shared_ptr<const Clock>(std::shared_ptr<void>(), &stage_.clock())),
      trial_(stage_.app(), stage_.executor()),
      exporter_(stage_.app().files(), stage_.executor()),
      context_{stage_.app(), stage_.executor(), inspection_, trial_, exporter_, calendar_, dismissed_, {}} {}

fs::path ViewStage::programs() {
  return programsOf(stage_);
}

void ViewStage::install(const std::string& program, const std::string& version) {
  installProgram(programs() / program, version);
}

void ViewStage::writeHome(const fs::path& name, const std::string& content) {
  const fs::path path = homeOf(stage_) / name;
  fs::create_directories(path.parent_path());
  std::ofstream(path) << content;
}

void ViewStage::inspect() {
  inspection_.check(seenAgents(stage_.app().agentFamilies().get()));
  while (inspection_.isChecking().get()) {
    stage_.executor().runPending();
    std::this_thread::yield();
  }
}

void playInstalledAgents(ViewStage& views) {
  views.install("claude", "2.1.4");
  views.install("codex", "codex-cli 0.46.0");
  views.install("aider", "aider 0.86.1");
  views.writeHome(".claude/settings.json", R"({"hooks":{"Stop":[{"command":"kestrel-relay"}]}})");
  playTwoAgents(views.stage());
  views.inspect();
}

}  // namespace kestrel
