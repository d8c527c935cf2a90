// A server on a free port of this machine that does with each connection what the test says.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include "support/sockets.h"

namespace kerno::test {

// One connection, closed by the server when the handler returns.
class Connection {
 public:
  Connection(Socket socket, const std::atomic<bool>& stop) : socket_(socket), stop_(stop) {}

  // Reads until `have` says enough, the peer closes, or the test ends. What was read stays in
  // `received`.
  std::string received;
  void ReadUntil(const std::function<bool(std::string_view)>& have) {
    char buffer[65536];
    while (!have(received) && Readable()) {
      const auto got = recv(socket_, buffer, sizeof buffer, 0);
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
      const auto length = static_cast<SendLength>(std::min<size_t>(bytes.size(), 1 << 20));
      const auto sent = send(socket_, bytes.data(), length, kNoSignal);
      if (sent <= 0) return false;
      bytes.remove_prefix(static_cast<size_t>(sent));
    }
    return true;
  }
  // Sends `byte` ten times a second until the peer goes away or the test ends.
  void Drip(char byte) {
    while (!stop_ && Send({&byte, 1})) Pause(100);
  }
  void Reset() {
    const linger now{1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&now), sizeof now);
  }
  // Does nothing until the peer goes away or the test ends.
  void Hang() {
    ReadUntil([](std::string_view) { return false; });
  }
  // Neither reads nor writes until the test ends.
  void Ignore() {
    for (int i = 0; i < kWaits && !stop_; ++i) Pause(kStep);
  }

  static constexpr int kStep = 10;  // milliseconds
  static constexpr int kWaits = 1000;

 private:
  static void Pause(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
  bool Readable() const {
    SocketPoll wanted{socket_, POLLIN, 0};
    for (int i = 0; i < kWaits && !stop_; ++i) {
      if (const int ready = Poll(&wanted, 1, kStep); ready != 0) return ready > 0;
    }
    return false;
  }

  Socket socket_;
  const std::atomic<bool>& stop_;
};

class LoopbackServer {
 public:
  explicit LoopbackServer(std::function<void(Connection&)> handle)
      : handle_(std::move(handle)), listener_(OpenSocket()) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const place = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(listener_, place, sizeof address), 0);
    EXPECT_EQ(listen(listener_, 8), 0);
    socklen_t size = sizeof address;
    EXPECT_EQ(getsockname(listener_, place, &size), 0);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { Serve(); });
  }
  ~LoopbackServer() {
    Stop();
    CloseSocket(listener_);
  }
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  int port() const { return port_; }
  std::string Address() const { return "127.0.0.1:" + std::to_string(port_); }

  // Ends the serving; afterwards what the handler wrote may be read.
  void Stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
  }
  int connections() const { return connections_; }

 private:
  void Serve() {
    SocketPoll wanted{listener_, POLLIN, 0};
    while (!stop_) {
      if (Poll(&wanted, 1, Connection::kStep) <= 0) continue;
      const Socket socket = accept(listener_, nullptr, nullptr);
      ++connections_;
      Connection connection(socket, stop_);
      handle_(connection);
      CloseSocket(socket);
    }
  }

  std::function<void(Connection&)> handle_;
  Socket listener_;
  int port_ = 0;
  std::atomic<bool> stop_ = false;
  std::atomic<int> connections_ = 0;
  std::thread thread_;
};

}  // namespace kerno::test
