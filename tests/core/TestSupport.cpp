#include "tests/core/TestSupport.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sys/stat.h>

#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {

void writeFixture(const std::filesystem::path& path, std::string_view content) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << content;
}

unsigned modeOf(const std::filesystem::path& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

SocketClient::SocketClient(const std::string& path) : socket_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
  const auto address = socketAddress(path);
  setSocketTimeout(socket_.get(), SO_RCVTIMEO, 10);
  isConnected_ =
      address && ::connect(socket_.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0;
}

bool SocketClient::send(std::string_view bytes) const {
  return sendAll(socket_.get(), bytes);
}

void SocketClient::finishSending() const {
  ::shutdown(socket_.get(), SHUT_WR);
}

std::string SocketClient::receive(std::size_t bytes) const {
  std::string reply;
  std::array<char, 4096> buffer{};
  while (reply.size() < bytes) {
    const ssize_t count = ::read(socket_.get(), buffer.data(), std::min(buffer.size(), bytes - reply.size()));
    if (count <= 0) break;
    reply.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return reply;
}

}  // namespace kestrel
