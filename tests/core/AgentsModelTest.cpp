#include <filesystem>
#include <gtest/gtest.h>

#include "tests/core/Soon.h"
#include "tests/core/TestSupport.h"

#include "KestrelCore/Presentation/AgentSetupModel.h"
#include "KestrelCore/Presentation/AgentsModel.h"

namespace kestrel {
namespace {

using enum AgentType;

constexpr Date kNow = ManualClock::kDefaultStart;

class AgentsModelTest : public testing::Test {
 protected:
  void program(const char* name, const char* text) const {
    writeFixture(root_ / name, text);
    std::filesystem::permissions(root_ / name, std::filesystem::perms::owner_all);
  }
  AgentInspection inspection() {
    return {{root_, world_.directories().home, (root_ / "bin").native(), {}, world_.sink},
            root_ / "here",
            main_,
            world_.clock};
  }
  [[nodiscard]] AgentsModel model(const AgentInspection& inspection) const {
    const auto families = AgentFamilyPresentation::buildFamilies(sessions_, {});
    return agentsModel(
        {kNow, &families, &inspection.result().get(), inspection.isChecking().get(), "/home/u"});
  }
  void session(const char* id, AgentType agent, IntegrationType by, double sure,
               std::optional<std::string> cwd) {
    const AgentSession session{id, agent, AgentState::working, kNow - 720, kNow - 40, {}, cwd, {}, "call", {},
                               by, sure};
    sessions_.push_back(std::make_shared<const AgentSession>(session));
  }
  TestWorld world_;
  const std::filesystem::path root_ = world_.folders.root();
  ManualExecutor main_{world_.clock};
  std::vector<AgentSessionPtr> sessions_;
};

TEST_F(AgentsModelTest, LooksOnlyWhenAsked) {
  program("bin/codex", "#!/bin/sh\necho 'codex-cli 0.200'\necho more\n");
  auto agents = inspection();
  agents.checkOnce({});
  agents.check({cursor});
  EXPECT_EQ(model(agents).checkedText, "Checking…");
  ASSERT_TRUE(soon(main_, [&] { return !agents.isChecking().get(); }));
  EXPECT_EQ(model(agents).cards.at(0).key, "codex") << "what is installed comes first";
  EXPECT_EQ(model(agents).cards[0].version, "codex-cli 0.200");
  agents.check({});  // Its end comes first.
}

TEST_F(AgentsModelTest, CardsHaveTheSessionsInATree) {
  session("s1", gemini, IntegrationType::lifecycleHook, 1, "/home/u/p/kestrel/");
  session("proc-gemini-7", gemini, IntegrationType::process, 0.6, "/home/user2");
  session("proc-claude-8", claude, IntegrationType::process, 0.6, {});
  session("own", AgentType::custom, IntegrationType::process, 1, {});
  const AgentsModel shown = model(inspection());
  EXPECT_EQ(shown.cards.at(0).detection, "Found as a process only; set it up to see what it does");
  EXPECT_EQ(shown.cards[0].hosts.at(0).sessions.at(0).title, "proc-claude-8") << "no directory is known";
  const auto& rows = shown.cards[1].hosts.at(0).sessions;
  EXPECT_EQ(rows.at(0), (AgentSessionRow{"s1", "kestrel", AgentState::working, "Working", "~/p/kestrel/",
                                         "started 12 min ago", "40 s ago · call", "Reported by the agent"}));
  EXPECT_EQ(shown.cards[2].detection, "Reports its sessions itself") << "since nothing else is certain";
}

TEST_F(AgentsModelTest, SetupNeedsTheRelayAndSaysWhenThereIsNothingToDo) {
  EXPECT_TRUE(agentSetupModel(inspection(), claude).snippets.empty()) << "there is no relay";
  program("here/kestrel-relay", "#!/bin/sh\n");
  const auto agents = inspection();
  for (const auto& adapter : agents.registry().allAdapters()) {
    const AgentSetupModel sheet = agentSetupModel(agents, adapter->agentType());
    EXPECT_EQ(sheet.snippets.empty(), adapter->integrationType() == IntegrationType::process) << sheet.title;
    for (const auto& snippet : sheet.snippets)
      EXPECT_NE(snippet.text.find(root_ / "here/kestrel-relay"), std::string::npos) << sheet.title;
  }
}

}  // namespace
}  // namespace kestrel
