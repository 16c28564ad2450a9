// A raw client of Kestrel's sockets, which may behave as no good client would. Prints what came back until
// the other side closed. Status 0 then, 3 when connecting was refused.
//   send PATH TEXT              sends the text in one write
//   fill PATH BYTES             the same with so many bytes of text
//   parts PATH TEXT...          sends texts with pauses between them
//   silent PATH                 sends nothing; prints how many seconds passed until it was closed
//   half PATH TEXT              sends the text, half-closes
//   vanish PATH TEXT            sends the text and does not wait for the reply
//   burst PATH CLIENTS EVENTS   so many hook events from so many clients at once, each its own session
//                               "burst-0", "burst-1", ...; prints the number of events acknowledged
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace {

using namespace kestrel;

UniqueDescriptor connectTo(const std::string& path) {
  const auto address = socketAddress(path);
  UniqueDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
  if (!address ||
      ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0) {
    return {};
  }
  setSocketTimeout(socket.get(), SO_RCVTIMEO, 20);
  return socket;
}

std::string readToEnd(int socket) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = ::read(socket, buffer.data(), buffer.size())) > 0;) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return text;
}

void sendParts(int socket, const std::vector<std::string>& parts) {
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) std::this_thread::sleep_for(std::chrono::milliseconds(100));
    (void)sendAll(socket, parts[i]);
  }
}

bool sendBurstEvent(const std::string& path, int number) {
  const UniqueDescriptor socket = connectTo(path);
  if (!socket) return false;
  const std::string event =
      R"({"agent":"codex","state":"idle","session_id":"burst-)" + std::to_string(number) + "\"}";
  return sendAll(socket.get(), event) && readToEnd(socket.get()) == "{\"ok\":true}\n";
}

int burst(const std::string& path, int clients, int events) {
  std::atomic<int> next{0};
  std::atomic<int> acknowledged{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < clients; ++i) {
    threads.emplace_back([&] {
      for (int number = next++; number < events; number = next++) {
        if (sendBurstEvent(path, number)) ++acknowledged;
      }
    });
  }
  for (auto& thread : threads) thread.join();
  std::printf("%d\n", acknowledged.load());
  return 0;
}

int silent(int socket) {
  const auto start = std::chrono::steady_clock::now();
  const std::string reply = readToEnd(socket);
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
  std::printf("%.2f %s\n", passed.count(), reply.c_str());
  return 0;
}

int run(const std::string& mode, const std::string& path, const std::vector<std::string>& words) {
  if (mode == "burst") return burst(path, std::atoi(words[0].c_str()), std::atoi(words[1].c_str()));
  const UniqueDescriptor socket = connectTo(path);
  if (!socket) return 3;
  if (mode == "silent") return silent(socket.get());
  if (mode == "fill") {
    sendParts(socket.get(), {std::string(static_cast<std::size_t>(std::atoi(words[0].c_str())), 'x')});
  } else {
    sendParts(socket.get(), words);
  }
  if (mode == "vanish") return 0;
  if (mode == "half") ::shutdown(socket.get(), SHUT_WR);
  std::fputs(readToEnd(socket.get()).c_str(), stdout);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  std::vector<std::string> words(argv, argv + argc);
  if (words.size() < 3) return 2;
  return run(words[1], words[2], {words.begin() + 3, words.end()});
}
