#include "KestrelPlatform/Linux/LinuxChime.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Support/Logger.h"

extern char** environ;

namespace kestrel {
namespace {

constexpr double kLookSeconds = 0.1;
/// The player gives up by itself before.
constexpr double kLongestSeconds = 15;

struct EventSound {
  std::string_view name;
  /// In the sound naming standard.
  const char* event;
};

constexpr std::array<EventSound, 1> kSounds{{{"Hero", "complete"}}};

/// A program that plays one sound; ended with this object.
class Player {
 public:
  explicit Player(pid_t pid) : pid_(pid) {}
  ~Player() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGKILL);
    while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  /// Whether it played; absent while it runs.
  std::optional<bool> result() {
    int status = 0;
    const pid_t ended = ::waitpid(pid_, &status, WNOHANG);
    if (ended == 0) return std::nullopt;
    pid_ = -1;
    return ended > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

 private:
  pid_t pid_;
};

/// Returns 0 or an error number.
int startPlayer(const std::filesystem::path& program, const char* event, pid_t& pid) {
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    ::posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", O_RDONLY, 0);
  std::array<char*, 3> words{const_cast<char*>(program.c_str()), const_cast<char*>(event), nullptr};
  const int error = ::posix_spawn(&pid, program.c_str(), &actions, nullptr, words.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  return error;
}

class LinuxChime final : public Chime {
 public:
  LinuxChime(Executor& executor, std::shared_ptr<LogSink> sink, std::filesystem::path program)
      : executor_(executor), logger_(std::move(sink), "notifications"), program_(std::move(program)) {}

  void play(std::string_view name, std::function<void()> onMissing) override {
    const auto sound = std::ranges::find(kSounds, name, &EventSound::name);
    if (sound == kSounds.end()) return onMissing();
    if (player_) return;  // One is being heard.
    pid_t pid = -1;
    if (const int error = startPlayer(program_, sound->event, pid); error != 0) {
      say("Cannot play a sound: " + program_.string() + ": " + std::generic_category().message(error));
      return onMissing();
    }
    player_.emplace(pid);
    onMissing_ = std::move(onMissing);
    look_ = executor_.repeat(kLookSeconds, kLookSeconds, [this] { look(); });
    deadline_ = executor_.after(kLongestSeconds, [this] { finish(false); });
  }

  void beep() override {
    for (const int descriptor : {STDERR_FILENO, STDOUT_FILENO}) {
      if (::isatty(descriptor) == 1 && ::write(descriptor, "\a", 1) == 1) return;
    }
    say("No sound can be played here: no event sound, and no terminal with a bell");
  }

 private:
  void look() {
    if (const auto hasPlayed = player_->result()) finish(*hasPlayed);
  }

  void finish(bool hasPlayed) {
    player_.reset();
    deadline_.reset();
    const auto look = std::move(look_);  // It may be what calls.
    const auto onMissing = std::exchange(onMissing_, nullptr);
    if (!hasPlayed) onMissing();
  }

  /// Once each: it will be no different the next time.
  void say(const std::string& line) {
    if (line == said_) return;
    said_ = line;
    logger_.info("{}", line);
  }

  Executor& executor_;
  const Logger logger_;
  const std::filesystem::path program_;
  std::optional<Player> player_;
  std::function<void()> onMissing_;
  std::string said_;
  RegistrationPtr look_;
  RegistrationPtr deadline_;
};

}  // namespace

std::unique_ptr<Chime> makeLinuxChime(Executor& executor, std::shared_ptr<LogSink> sink,
                                      std::filesystem::path player) {
  return std::make_unique<LinuxChime>(executor, std::move(sink), std::move(player));
}

}  // namespace kestrel
