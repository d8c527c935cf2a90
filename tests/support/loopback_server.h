// A server on a free port of this machine that does with each connection what the test says.
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

namespace kerno::test {

// One connection, closed by the server when the handler returns.
class Connection {
 public:
  Connection(int fd, int stop) : fd_(fd), stop_(stop) {}

  // Reads until `have` says enough, the peer closes, or the test ends. What was read stays in
  // `received`.
  std::string received;
  void ReadUntil(const std::function<bool(std::string_view)>& have) {
    char buffer[65536];
    while (!have(received) && Readable()) {
      const ssize_t got = recv(fd_, buffer, sizeof buffer, 0);
      if (got <= 0) return;
      received.append(buffer, static_cast<size_t>(got));
    }
  }
  void ReadHeaders() {
    ReadUntil([](std::string_view text) { return text.find("\r\n\r\n") != text.npos; });
  }
  void ReadRequest() {
    ReadHeaders();
    const size_t body = received.find("\r\n\r\n") + 4;
    const size_t length = received.find("Content-Length: ");
    ASSERT_NE(length, std::string::npos) << received;
    const size_t size = body + std::stoul(received.substr(length + 16));
    ReadUntil([size](std::string_view text) { return text.size() >= size; });
  }
  // False when the peer has gone.
  bool Send(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t sent = send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent <= 0) return false;
      bytes.remove_prefix(static_cast<size_t>(sent));
    }
    return true;
  }
  void Reset() {
    const linger now{1, 0};
    setsockopt(fd_, SOL_SOCKET, SO_LINGER, &now, sizeof now);
  }
  // Does nothing until the peer goes away or the test ends.
  void Hang() {
    ReadUntil([](std::string_view) { return false; });
  }
  // Neither reads nor writes until the test ends.
  void Ignore() {
    pollfd stop{stop_, POLLIN, 0};
    poll(&stop, 1, 10'000);
  }

 private:
  bool Readable() const {
    pollfd either[] = {{fd_, POLLIN, 0}, {stop_, POLLIN, 0}};
    return poll(either, 2, 10'000) > 0 && either[1].revents == 0;
  }

  int fd_;
  int stop_;
};

class LoopbackServer {
 public:
  explicit LoopbackServer(std::function<void(Connection&)> handle) : handle_(std::move(handle)) {
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(listener_, 8), 0);
    socklen_t size = sizeof address;
    EXPECT_EQ(getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size), 0);
    port_ = ntohs(address.sin_port);
    EXPECT_EQ(pipe(stop_), 0);
    thread_ = std::thread([this] { Serve(); });
  }
  ~LoopbackServer() {
    Stop();
    close(stop_[0]);
    close(listener_);
  }
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  int port() const { return port_; }
  std::string Address() const { return "127.0.0.1:" + std::to_string(port_); }

  // Ends the serving; afterwards what the handler wrote may be read.
  void Stop() {
    if (!thread_.joinable()) return;
    close(stop_[1]);
    thread_.join();
  }
  int connections() const { return connections_; }

 private:
  void Serve() {
    for (;;) {
      pollfd either[] = {{listener_, POLLIN, 0}, {stop_[0], POLLIN, 0}};
      if (poll(either, 2, -1) < 0 || either[1].revents != 0) return;
      const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      if (fd < 0) return;
      ++connections_;
      Connection connection(fd, stop_[0]);
      handle_(connection);
      close(fd);
    }
  }

  std::function<void(Connection&)> handle_;
  int listener_ = -1;
  int port_ = 0;
  int stop_[2] = {-1, -1};
  std::atomic<int> connections_ = 0;
  std::thread thread_;
};

}  // namespace kerno::test
