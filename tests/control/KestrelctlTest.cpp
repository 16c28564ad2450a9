#include <gmock/gmock.h>

#include "KestrelControl/ControlOptions.h"
#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Support/ChildProcess.h"
#include "KestrelCore/Support/SerialQueue.h"
#include "KestrelCore/Support/UnixSocketServer.h"
#include "KestrelPlatform/PlatformFactory.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel {
namespace {

struct Ending {
  int status = -1;
  std::string output;  // Standard output and standard error together.
};

/// Runs the real kestrelctl in a home of its own.
class Kestrelctl : public testing::Test {
 protected:
  [[nodiscard]] Ending run(const std::vector<std::string>& words, const std::string& variable = "A=a") const {
    const std::string environment = "HOME='" + home_.directories().home.string() + "' " + variable;
    std::vector<std::string> command{"/bin/sh", "-c",
                                     "exec 2>&1; exec env -i " + environment + R"( "$0" "$@")", KESTRELCTL};
    command.insert(command.end(), words.begin(), words.end());
    const auto result = runChildProcess(command);
    return result ? Ending{result->status, result->output} : Ending{};
  }

  /// Something that gives every request this answer where Kestrel's control socket would be.
  [[nodiscard]] std::unique_ptr<UnixSocketServer> answering(std::string reply) {
    Directories place = home_.directories();
    place.applicationSupport = place.home / ".local/share";
    const auto policy = std::make_shared<KestrelWritePolicy>(place, log_);
    auto server = std::make_unique<UnixSocketServer>(
        queue_, place.controlSocket(),
        UnixSocketServer::Protocol{UnixSocketServer::Reading::untilEndOfFile, 65'536, 2, {}},
        makePeerIdentity(), policy, Logger(log_, "test"), [reply](std::string_view) {
          return UnixSocketServer::Reply{reply, {}};
        });
    EXPECT_FALSE(server->start().has_value());
    return server;
  }

  TemporaryDirectories home_;
  std::shared_ptr<MemoryLogSink> log_ = std::make_shared<MemoryLogSink>();
  SerialQueue queue_{"test.control"};
};

TEST_F(Kestrelctl, SaysWhenNothingRuns) {
  const Ending ending = run({"status", "--json"});
  EXPECT_EQ(ending.status, kControlNotRunning);
  EXPECT_EQ(ending.output, "Kestrel is not running.\n");
  EXPECT_EQ(run({"status"}, "XDG_DATA_HOME=/nonexistent").status, kControlNotRunning);
  EXPECT_EQ(run({"status"}, "HOME=").status, kControlFailed);
  EXPECT_EQ(run({"nothing"}).status, kControlUsage);
  EXPECT_EQ(run({"--version"}).output, "kestrelctl 0.4.0 (Beta)\n");
}

TEST_F(Kestrelctl, PrintsAnswersAndAsksAtTheStandardPlaceToo) {
  const auto server = answering(R"({"ok":true,"result":{"statusDescription":"Sleep enabled — x"}})");
  const Ending plain = run({"pause", "30m"}, "XDG_DATA_HOME=/nonexistent");
  EXPECT_EQ(plain.status, kControlDone);
  EXPECT_EQ(plain.output, "Sleep enabled — x\n");
  EXPECT_EQ(run({"resume", "--json"}).output, "{\n  \"statusDescription\": \"Sleep enabled — x\"\n}\n");
}

TEST_F(Kestrelctl, FailsOnFailuresAndOnGarbage) {
  struct Case {
    std::string reply, output;
  };
  const Case cases[] = {
      {R"({"ok":false,"error":"There is no setting '\u001b[2J'"})",
       "kestrelctl: There is no setting '?[2J'\n"},
      {"garbage", "kestrelctl: Kestrel's answer cannot be read: "},
      {R"({"ok":1})", "kestrelctl: Kestrel's answer cannot be read: "},
      {"", "kestrelctl: Kestrel does not answer at "},
  };
  for (const auto& [reply, output] : cases) {
    const auto server = answering(reply);
    const Ending ending = run({"settings", "get", "x"});
    EXPECT_EQ(ending.status, kControlFailed) << reply;
    EXPECT_THAT(ending.output, testing::StartsWith(output));
  }
}

}  // namespace
}  // namespace kestrel
