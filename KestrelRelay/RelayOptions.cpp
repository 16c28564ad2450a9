#include "KestrelRelay/RelayOptions.h"

#include <charconv>
#include <getopt.h>
#include <string_view>

#include "KestrelCore/Agents/AgentState.h"
#include "KestrelRelay/StateMapping.h"

namespace kestrel {

namespace {

constexpr option kLongOptions[] = {
    {"agent", required_argument, nullptr, 'a'},      {"state", required_argument, nullptr, 's'},
    {"session-id", required_argument, nullptr, 'i'}, {"cwd", required_argument, nullptr, 'c'},
    {"model", required_argument, nullptr, 'm'},      {"pid", required_argument, nullptr, 'p'},
    {"strict", no_argument, nullptr, 't'},           {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, 'v'},          {nullptr, 0, nullptr, 0},
};

// The leading "-" hands every other word over in its place, so that neither the order of the words nor
// POSIXLY_CORRECT matters; the ":" tells a missing value from an unknown option.
constexpr const char* kShortOptions = "-:hv";

bool looksLikeJsonObject(std::string_view word) {
  const auto start = word.find_first_not_of(" \t\r\n");
  return start != std::string_view::npos && word[start] == '{';
}

std::optional<std::string> nonEmpty(std::string_view text) {
  if (text.empty()) return std::nullopt;
  return std::string(text);
}

std::optional<std::int32_t> positivePid(std::string_view text) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value <= 0) return std::nullopt;
  return value;
}

void apply(RelayOptions& options, int code, const char* value) {
  switch (code) {
    case 'a':
      options.agent = nonEmpty(value);
      break;
    case 's':
      options.state = nonEmpty(value);
      break;
    case 'i':
      options.sessionId = nonEmpty(value);
      break;
    case 'c':
      options.cwd = nonEmpty(value);
      break;
    case 'm':
      options.model = nonEmpty(value);
      break;
    case 'p':
      options.pid = positivePid(value);
      if (!options.pid) options.problems.push_back("--pid needs a positive number");
      break;
    case 't':
      options.strict = true;
      break;
    case 'h':
      options.help = true;
      break;
    case 'v':
      options.version = true;
      break;
    case 1:
      options.problems.push_back("unexpected argument: " + std::string(value));
      break;
    case ':':
      options.problems.push_back("an option at the end has no value");
      break;
    default:
      options.problems.push_back("unknown option");
      break;
  }
}

void checkRequired(RelayOptions& options) {
  if (!options.agent) options.problems.push_back("--agent is missing");
  if (!options.state) {
    options.problems.push_back("--state is missing");
  } else if (*options.state != kAutomaticState && stateNamed(*options.state) == AgentState::unknown) {
    options.problems.push_back("unknown state: " + *options.state);
  }
}

}  // namespace

RelayOptions RelayOptions::parse(int argc, const char* const* argv) {
  RelayOptions options;
  std::vector<std::string> words(argv, argv + argc);
  if (words.size() > 1 && looksLikeJsonObject(words.back())) {
    options.jsonArgument = std::move(words.back());
    words.pop_back();
  }
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  const int count = static_cast<int>(words.size());
  opterr = 0;
  optind = 1;
  int code = 0;
  while ((code = getopt_long(count, arguments.data(), kShortOptions, kLongOptions, nullptr)) != -1) {
    apply(options, code, optarg);
  }
  for (int i = optind; i < count; ++i) apply(options, 1, arguments[static_cast<std::size_t>(i)]);
  checkRequired(options);
  return options;
}

const char* RelayOptions::usage() {
  return "Usage: kestrel-relay --agent AGENT --state STATE [OPTION]... [JSON]\n"
         "Tells Kestrel what a coding agent is doing. Made to be called by the agent's hooks.\n"
         "\n"
         "  --agent AGENT      claude, codex, gemini, opencode, antigravity, cursor, windsurf, aider or "
         "custom\n"
         "  --state STATE      idle, working, waiting, completed, error, or auto: from the hook's own event\n"
         "  --session-id ID    the agent's session; else from the hook's JSON, else from the agent's "
         "process\n"
         "  --cwd DIRECTORY    the agent's directory; else from the hook's JSON, else the current one\n"
         "  --model MODEL      the model in use; else from the hook's JSON\n"
         "  --pid PID          the agent's process; else the nearest ancestor that is no shell\n"
         "  --strict           report failures: 1 = not delivered, 2 = wrong usage\n"
         "  -h, --help         print this help and exit\n"
         "  -v, --version      print the version and exit\n"
         "\n"
         "The hook's JSON is the last argument or stands on standard input. Without --strict nothing is\n"
         "printed and the exit status is 0, whatever happens; it never takes more than 250 ms.\n";
}

}  // namespace kestrel
