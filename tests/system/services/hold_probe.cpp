// Holds assertions through the real services and tells what they say of it. Commands on standard input:
//   take system|display NAME    answers "created ID" or "failed CODE"
//   release ID
//   quit                        as the end of input
// Each change of the evidence is one line on standard output, "evidence SERVICE/KIND=STATE (DETAIL); ...".
#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <unistd.h>

#include "KestrelCore/Support/AsioExecutor.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelPlatform/Linux/LinuxPowerAssertions.h"

namespace {

using namespace kestrel;

class StandardErrorSink final : public LogSink {
 public:
  bool isEnabled(LogLevel) const override { return true; }
  void write(const LogRecord& record) override {
    std::fprintf(stderr, "[%.*s] %.*s\n", static_cast<int>(record.category.size()), record.category.data(),
                 static_cast<int>(record.message.size()), record.message.data());
  }
};

class Probe {
 public:
  explicit Probe(AsioExecutor& executor)
      : executor_(executor),
        assertions_(makeLinuxPowerAssertions(executor, std::make_shared<StandardErrorSink>(),
                                             std::make_shared<SystemClock>())) {
    assertions_->setOnEvidenceChanged([this] { print("changed "); });
    input_ = executor.watch(STDIN_FILENO, Executor::Readiness::readable, [this] { readInput(); });
    // As a program does that looks at its holds now and then.
    look_ = executor.repeat(1, 1, [this] { print(""); });
  }

 private:
  void print(const char* cause) {
    std::string line;
    for (const HoldEvidence& each : assertions_->evidence()) {
      line += line.empty() ? "" : "; ";
      line += each.service + "/" + std::string(rawValue(each.kind)) + "=" + std::string(rawValue(each.state));
      if (!each.detail.empty()) line += " (" + each.detail + ")";
    }
    if (line != last_) std::cout << cause << "evidence " << line << std::endl;
    last_ = line;
  }

  void readInput() {
    char buffer[4096];
    const ssize_t length = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (length == 0) return executor_.stop();
    if (length < 0) return;
    pending_.append(buffer, static_cast<std::size_t>(length));
    for (auto end = pending_.find('\n'); end != std::string::npos; end = pending_.find('\n')) {
      run(pending_.substr(0, end));
      pending_.erase(0, end + 1);
    }
  }

  void run(const std::string& line) {
    std::istringstream words(line);
    std::string command, type, name;
    words >> command;
    if (command == "take") {
      std::getline(words >> type >> std::ws, name);
      const auto [code, id] =
          assertions_->create(type == "display" ? PowerAssertions::kPreventIdleDisplaySleep
                                                : PowerAssertions::kPreventIdleSystemSleep,
                              PowerAssertions::kLevelOn, name);
      std::cout << (code == 0 ? "created " : "failed ") << (code == 0 ? static_cast<long>(id) : code)
                << std::endl;
    } else if (command == "release") {
      PowerAssertionID id = 0;
      if (words >> id) assertions_->release(id);
    } else if (command == "quit") {
      executor_.stop();
    }
    print("");
  }

  AsioExecutor& executor_;
  std::unique_ptr<PowerAssertions> assertions_;
  RegistrationPtr input_;
  RegistrationPtr look_;
  std::string pending_;
  std::string last_;
};

}  // namespace

int main() {
  AsioExecutor executor;
  const Probe probe(executor);
  executor.run();
  return 0;
}
