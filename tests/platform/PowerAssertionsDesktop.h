#pragma once

#include <filesystem>
#include <string>
#include <sys/types.h>

#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel::test {

/// A session bus with a stand-in for a desktop on it, and no system bus, for the programs' own environment.
class PrivateDesktop {
 public:
  PrivateDesktop();
  ~PrivateDesktop();
  PrivateDesktop(const PrivateDesktop&) = delete;
  PrivateDesktop& operator=(const PrivateDesktop&) = delete;

  /// Starts the stand-in with this bus name. False when this machine cannot run one.
  [[nodiscard]] bool serve(const std::string& name);
  /// Ends the stand-in.
  void leave();
  /// A command to the stand-in, which has carried it out when its next call is answered.
  void tell(const std::string& command);
  /// How many of the calls so far contain a text.
  [[nodiscard]] int calls(const std::string& text) const;

 private:
  TemporaryDirectories temporary_;
  const std::filesystem::path directory_ = temporary_.root();
  pid_t bus_ = -1;
  pid_t desktop_ = -1;
  int input_ = -1;
};

}  // namespace kestrel::test
