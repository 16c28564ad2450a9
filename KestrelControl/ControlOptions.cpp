#include "KestrelControl/ControlOptions.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Control/Duration.h"
#include "KestrelCore/Control/StatusReport.h"

namespace kestrel {
namespace {

constexpr const char* kFooter =
    "DURATION is 90s, 30m, 2h or 1h30m; a bare number is minutes.\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage, 3 Kestrel is not running.";

std::string durationProblem(const std::string& word) {
  return parseDuration(word) ? "" : "'" + word + "' is no duration; use 90s, 30m or 1h30m";
}

std::vector<std::string> agentsWithSetup() {
  std::vector<std::string> names;
  for (const auto agent : allCases<AgentType>()) {
    if (agent != AgentType::custom) names.emplace_back(rawValue(agent));
  }
  return names;
}

/// The commands of kestrelctl; each, when it was given, fills the options.
class Grammar {
 public:
  explicit Grammar(ControlOptions& options) : options_(options) {
    app_.set_version_flag("--version", std::string("kestrelctl ") + kKestrelVersion);
    app_.footer(kFooter);
    app_.require_subcommand(1);
    command(app_, "status", "What Kestrel does, and why")
        ->add_flag("--watch", options_.watch, "Show it again each second, until interrupted");
    auto* pause = command(app_, "pause", "Let the machine sleep for a while");
    word(pause, "DURATION", "How long")->check(CLI::Validator(durationProblem, ""));
    command(app_, "resume", "End a pause");
    auto* hold = command(app_, "hold", "Keep the machine awake without any agent, or end that");
    word(hold, "STATE", "on or off")->check(CLI::IsMember({"on", "off"}));
    command(app_, "enable", "Switch protection on");
    command(app_, "disable", "Switch protection off");
    command(app_, "sessions", "The agents' sessions");
    command(app_, "doctor", "What works on this machine, what does not, and what to do about it");
    command(app_, "why", "Who keeps this machine awake: Kestrel, or another");
    command(app_, "diagnostics", "A report for people who help, without anything private");
    addSettings();
    addUsage();
    addAgents();
    addHelper();
    addRun();
  }

  CLI::App& app() { return app_; }

 private:
  CLI::App* command(CLI::App& parent, const std::string& name, const char* description) {
    auto* added = parent.add_subcommand(name, description);
    added->add_flag("--json", options_.json, "Print the result as JSON");
    added->final_callback([this, &parent, name] {
      if (&parent != &app_) words_.insert(words_.begin(), name);
      options_.request = {&parent == &app_ ? name : parent.get_name(), words_};
    });
    return added;
  }

  CLI::Option* word(CLI::App* command, const char* name, const char* description) {
    return command
        ->add_option_function<std::string>(
            name, [this](const std::string& text) { words_.push_back(text); }, description)
        ->required();
  }

  void addSettings() {
    auto* settings = app_.add_subcommand("settings", "Read and change settings");
    settings->require_subcommand(1);
    command(*settings, "list", "All settings");
    word(command(*settings, "get", "One setting"), "KEY", "As 'list' shows it");
    auto* set = command(*settings, "set", "Change one setting");
    word(set, "KEY", "As 'list' shows it");
    word(set, "VALUE", "true or false, a number, or a date or none");
  }

  void addUsage() {
    auto* usage = app_.add_subcommand("usage", "What the agents used: tokens and their price");
    usage->add_option("PART", usage_.what, "today, days or sessions")
        ->check(CLI::IsMember({"today", "days", "sessions"}))
        ->default_val("today");
    usage->add_option("--limit", usage_.limit, "At most so many days or sessions");
    usage->add_flag("--json", usage_.json, "Print the result as JSON");
    usage->final_callback([this] { options_.usage = usage_; });
  }

  void addAgents() {
    auto* agents = app_.add_subcommand("agents", "The agents on this machine, and which report to Kestrel");
    agents->add_flag("--json", agents_.json, "Print the result as JSON");
    agents->final_callback([this] { options_.agents = agents_; });
    auto* setup = app_.add_subcommand("setup", "How to let an agent report to Kestrel");
    setup->add_option("AGENT", setup_.agent, "Which agent")
        ->required()
        ->check(CLI::IsMember(agentsWithSetup()));
    setup->add_flag("--classic", setup_.classic, "The set-up for older versions of the agent");
    setup->add_flag("--json", setup_.json, "Print the result as JSON");
    setup->final_callback([this] { options_.setup = setup_; });
  }

  void addHelper() {
    auto* helper =
        app_.add_subcommand("helper", "The helper that keeps the machine awake with its lid closed");
    helper->require_subcommand(1);
    auto* status = helper->add_subcommand("status", "Who answers, and what it holds");
    status->add_flag("--json", helper_.json, "Print the result as JSON");
    for (auto* command :
         {status, helper->add_subcommand("install", "Install it and start it, now and always"),
          helper->add_subcommand("uninstall", "End its hold and remove it")}) {
      if (command != status)
        command->add_flag("--user", helper_.forThisUser, "For this user alone, without root");
      command->final_callback([this, name = command->get_name()] {
        helper_.verb = name;
        options_.helper = helper_;
      });
    }
  }

  /// Its words are the command's own, and never parsed.
  void addRun() {
    auto* run = app_.add_subcommand("run", "Run a command, and keep the machine awake while it runs");
    run->footer(
        "kestrelctl run [--] COMMAND [ARGUMENTS...]\nIts exit status is the command's, and signals reach "
        "it.");
    run->final_callback([] { throw CLI::RequiredError("COMMAND"); });
  }

  ControlOptions& options_;
  HelperOptions helper_;
  UsageOptions usage_;
  AgentsOptions agents_;
  SetupOptions setup_;
  std::vector<std::string> words_;
  CLI::App app_{"Asks a running Kestrel what it does, and tells it what to do.", "kestrelctl"};
};

/// The command after `run`, if that is what is wanted, and not help about it.
std::optional<RunOptions> commandToRun(const std::vector<std::string>& words) {
  if (words.size() < 2 || words[0] != "run" || words[1] == "-h" || words[1] == "--help") return std::nullopt;
  RunOptions run;
  run.words.assign(words.begin() + (words[1] == "--" ? 2 : 1), words.end());
  return run.words.empty() ? std::nullopt : std::optional(std::move(run));
}

}  // namespace

ControlOptions ControlOptions::parse(int argc, const char* const* argv) {
  ControlOptions options;
  options.run = commandToRun({argv + (argc > 0 ? 1 : 0), argv + argc});
  if (options.run) return options;
  Grammar grammar(options);
  try {
    grammar.app().parse(argc, argv);
  } catch (const CLI::ParseError& outcome) {
    options.exitStatus = grammar.app().exit(outcome) == 0 ? kControlDone : kControlUsage;
  }
  return options;
}

}  // namespace kestrel
