#include <chrono>
#include <fmt/format.h>
#include <gmock/gmock.h>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Agents/Adapters/AgentRegistry.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

using enum AgentType;

constexpr const char* kRelay = "/home/u/p/kestrel-relay";
constexpr const char* kHooks = R"({"hooks":{"Stop":[{"command":"/home/u/p/kestrel-relay --state idle"}]}})";
constexpr const char* kTool = "#!/bin/sh\n[ \"$1\" = --version ] && echo ' 1.2 (A) '\n";
constexpr const char* kFails = "#!/bin/sh\nexit 1\n";

/// A file below a machine's root; "#!" makes it executable, a name that ends in "/" is a folder.
using File = std::pair<std::string, std::string>;

/// A whole machine in a folder of its own: "home", executables in "bin", fixed paths below it; Cursor runs.
struct Machine {
  explicit Machine(const std::vector<File>& files = {}) {
    const auto& root = world.folders.root();
    environment = {root, world.directories().home, (root / "none").native() + ":" + (root / "bin").native(),
                   [](AgentType agent) { return agent == cursor; }, world.sink};
    for (const auto& [name, content] : files) {
      fs::create_directories((root / name).parent_path());
      if (!name.ends_with('/')) writeFixture(root / name, content);
      if (content.starts_with("#!")) fs::permissions(root / name, fs::perms::owner_all);
    }
  }
  [[nodiscard]] AgentRegistry registry() const {
    AgentRegistry made(environment);
    made.registerDefaultAdapters();
    return made;
  }
  [[nodiscard]] IntegrationStatus detect(AgentType agent) const {
    return registry().adapter(agent)->detect();
  }

  TestWorld world;
  AdapterEnvironment environment;
};

TEST(AgentAdapters, TextsAreExactAndTheirJsonParses) {
  const AgentRegistry registry = Machine().registry();
  for (const auto& adapter : registry.allAdapters()) {
    const std::string snippet = adapter->manualSetupSnippet(kRelay);
    std::string text = "== instructions\n" + adapter->setupInstructions() + "\n== snippet\n" + snippet + "\n";
    for (const auto& [versions, where, what, how, undo] : adapter->verifiedSetups(kRelay)) {
      text +=
          fmt::format("== for {} in {}\n{}\n== what\n{}\n== undo\n{}\n", versions, where, how, what, undo);
      if (where.ends_with(".json")) {
        EXPECT_GT(parseJson(what)["hooks"].size(), 6U);
      }
    }
    const fs::path file = std::string(rawValue(adapter->agentType())) + ".txt";
    EXPECT_EQ(text, readWholeFile(KESTREL_SETUP_TEXTS / file, 100'000).value_or("no such file"));
    if (snippet.ends_with("\n}")) {
      EXPECT_GT(parseJson("{" + snippet.substr(snippet.find('\n')) + "}")["hooks"].size(), 4U);
    }
  }
}

TEST(AgentAdapters, TellWhatIsInstalledAndActive) {
  const File noVersion{"bin/codex", kFails}, settings{"home/.claude/settings.json", kHooks};
  const File chatGpt{"Applications/ChatGPT.app/Contents/Resources/codex", kTool};
  const struct {
    AgentType agent;
    std::vector<File> files;
    const char* expected;  // The message, i(nstalled) and a(ctive), and the version.
  } rows[] = {
      {claude, {}, "Not installed||"},
      {claude, {{"bin/claude/", ""}, {"home/.claude.json", kHooks}}, "Not installed|a|"},
      {claude, {{"bin/claude", kTool}}, "Installed (Hooks not configured)|i|1.2 (A)"},
      {claude, {{"bin/claude", kTool}, {"home/.claude.json", kHooks}}, "Hook active|ia|1.2 (A)"},
      {claude, {{"Users/vexel/.local/bin/claude", kTool}, settings}, "Hook active|ia|1.2 (A)"},
      {claude, {{"bin/claude", "no program"}, settings}, "Not installed|a|"},
      {claude, {{"home/.claude.json", R"({"hooks":["kestrel\u002drelay"]})"}}, "Not installed|a|"},
      {claude, {{"home/.claude.json", R"({"a":"kestrel-relay","hooks":{}})"}}, "Not installed||"},
      {codex, {noVersion}, "Installed (Hook not configured)|i|"},
      {codex, {noVersion, {"home/.codex/config.toml", "['kestrel-relay']"}}, "Hook active|ia|Config present"},
      {codex, {noVersion, {"home/.codex/hooks.json", kHooks}}, "Hook active|ia|"},
      {codex, {chatGpt}, "Installed (Hook not configured)|i|1.2 (A)"},
      {gemini, {{"opt/homebrew/bin/gemini", kTool}}, "Installed (Hooks not configured)|i|1.2 (A)"},
      {gemini, {{"bin/gemini", kTool}, {"home/.gemini/settings.json", kHooks}}, "Hook active|ia|1.2 (A)"},
      {opencode, {{"Users/vexel/.opencode/bin/opencode", kFails}}, "Installed (Plugin not configured)|i|"},
      {opencode,
       {{"bin/opencode", kTool}, {"home/.config/opencode/plugins/kestrel.js", ""}},
       "Plugin active|ia|1.2 (A)"},
      {antigravity, {{"Applications/Antigravity IDE.app/", ""}}, "Installed|i|"},
      {antigravity, {{"home/.gemini/antigravity/", ""}}, "Detected|i|"},
      {windsurf, {{"Applications/Windsurf.app/", ""}}, "Installed|i|"},
      {windsurf, {{"home/.windsurf/", ""}}, "Detected|i|"},
      {cursor, {}, "Running (Process signal)|ia|"},
      {aider, {{"bin/aider", kTool}}, "Installed (CLI executable detected)|i|1.2 (A)"},
  };
  for (const auto& [agent, files, expected] : rows) {
    const auto status = Machine(files).detect(agent);
    EXPECT_EQ(status.statusMessage + "|" + (status.isInstalled ? "i" : "") +
                  (status.isIntegrationActive ? "a|" : "|") + status.agentVersion.value_or(""),
              expected)
        << rawValue(agent);
  }
}

TEST(AgentAdapters, SurviveBadConfigurations) {
  for (const std::string& content :
       {std::string("kestrel-relay"), std::string(R"({"hooks":"kestrel-relay)") + "\xFF\"}",
        std::string(200'000, '[') + "kestrel-relay", std::string(R"({"hooks":"kestrel-relay"})") + '\0'}) {
    const Machine machine({{"home/.claude.json", content}});
    EXPECT_FALSE(machine.detect(claude).isIntegrationActive);
    EXPECT_EQ(machine.world.sink->count("Cannot understand"), 1U);
  }
  const Machine huge({{"home/.claude.json", kHooks}, {"home/.claude/settings.json/", ""}});
  fs::resize_file(huge.environment.home / ".claude.json", 100'000'000);
  EXPECT_FALSE(huge.detect(claude).isIntegrationActive);
  EXPECT_EQ(huge.world.sink->count("Cannot read"), 2U);
}

TEST(AgentAdapters, TakeTheFirstExecutableOfAnAbsoluteFolder) {
  Machine machine({{"bin/claude", "#!/bin/sh\necho first"}, {"more/claude", "#!/bin/sh\necho second"}});
  const fs::path root = machine.environment.root;
  const std::string relative = fs::relative(root / "bin").native();
  const std::string bin = root / "bin", more = root / "more";
  const std::pair<std::string, const char*> rows[] = {{"", "-"},
                                                      {":" + relative, "-"},
                                                      {relative + "::" + more + ":" + bin, "second"},
                                                      {bin + "/:" + more, "first"}};
  for (const auto& [searchPath, expected] : rows) {
    machine.environment.searchPath = searchPath;
    EXPECT_EQ(machine.detect(claude).agentVersion.value_or("-"), expected) << searchPath;
  }
}

TEST(AgentRegistry, DetectsAllAtOnceWhateverTheExecutablesDo) {
  const Machine machine({{"bin/claude", "#!/bin/sh\nexec sleep 60\n"},
                         {"bin/codex", "#!/bin/sh\nexec sleep 60\n"},
                         {"bin/gemini", "#!/bin/sh\nwhile :; do echo 0123456789; done\n"},
                         {"bin/opencode", "#!/bin/sh\nread answer; printf 'v\\377%s' \"$answer\"\n"},
                         {"bin/aider", "#!/no/such/interpreter\n"}});
  const auto start = std::chrono::steady_clock::now();
  const auto statuses = machine.registry().detectAll();
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  EXPECT_LT(took.count(), 5.5);
  for (const auto& [agent, status] : statuses) {
    EXPECT_NE(status.isInstalled, status.statusMessage == "Not installed") << rawValue(agent);
    EXPECT_EQ(status.agentVersion.value_or("-"), agent == opencode ? "v?" : "-") << rawValue(agent);
  }
  EXPECT_EQ(machine.world.sink->count("tells no version"), 4U);
}

TEST(IntegrationStatus, SurvivesJson) {
  const IntegrationStatus status{true, "1.2",       IntegrationType::lifecycleHook,
                                 true, "/home/u/b", "Hook active"};
  EXPECT_EQ(decodeIntegrationStatus(encode(status)), status);
  EXPECT_EQ(encode(status)["backupPath"], "/home/u/b");
}

}  // namespace
}  // namespace kestrel
