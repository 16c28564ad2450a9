#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "KestrelCore/Agents/HookEvent.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {

/// A hook socket that writes down what comes, with one read per connection as the real receiver does.
class HookListener {
 public:
  /// Without an answer connections are accepted and kept open in silence.
  explicit HookListener(const std::filesystem::path& path, std::string answer = "{\"ok\":true}\n")
      : answer_(std::move(answer)) {
    std::filesystem::create_directories(path.parent_path());
    std::filesystem::remove(path);
    const sockaddr_un address = socketAddress(path.native()).value();
    if (bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(socket_.get(), 64) != 0) {
      throw std::runtime_error("no listener at " + path.native());
    }
    thread_ = std::thread([this] { serve(); });
  }
  ~HookListener() { (void)finish(); }

  /// Stops listening. What came, in the order in which it came.
  std::vector<HookEvent> finish() {
    shutdown(socket_.get(), SHUT_RDWR);
    if (thread_.joinable()) thread_.join();
    return events_;
  }

 private:
  void serve() {
    std::vector<UniqueDescriptor> clients;
    std::string record(65'536, '\0');
    while (clients.emplace_back(accept(socket_.get(), nullptr, nullptr))) {
      const ssize_t length = read(clients.back().get(), record.data(), record.size());
      if (length <= 0) continue;
      events_.push_back(
          HookEvent::parse(std::string_view(record).substr(0, static_cast<std::size_t>(length)), Date()));
      if (!answer_.empty() && sendAll(clients.back().get(), answer_)) clients.pop_back();
    }
  }

  UniqueDescriptor socket_{socket(AF_UNIX, SOCK_STREAM, 0)};
  const std::string answer_;
  /// The thread's own until it has been joined.
  std::vector<HookEvent> events_;
  std::thread thread_;
};

}  // namespace kestrel
