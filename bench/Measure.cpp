#include "bench/Measure.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrel::bench {
namespace {

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

pid_t startChild(const std::vector<std::string>& arguments, const std::string& home, int outputDescriptor) {
  std::vector<char*> words;
  for (const auto& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  std::string homeVariable = "HOME=" + home;
  std::string pathVariable = "PATH=/usr/bin:/bin";
  std::array<char*, 3> environment{homeVariable.data(), pathVariable.data(), nullptr};
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  ::posix_spawn_file_actions_adddup2(&actions, outputDescriptor < 0 ? STDERR_FILENO : outputDescriptor,
                                     STDOUT_FILENO);
  pid_t child = -1;
  if (::posix_spawn(&child, words[0], &actions, nullptr, words.data(), environment.data()) != 0) {
    std::perror(words[0]);
    std::exit(1);
  }
  ::posix_spawn_file_actions_destroy(&actions);
  return child;
}

double waitForChild(pid_t child) {
  rusage usage{};
  int status = 0;
  ::wait4(child, &status, 0, &usage);
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double peakMemoryOf(pid_t child) {
  std::ifstream status("/proc/" + std::to_string(child) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::strtod(line.c_str() + 6, nullptr);
  }
  return 0;
}

double ownCpuSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

}  // namespace kestrel::bench
