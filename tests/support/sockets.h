// The few differences between the sockets of the systems.
#pragma once

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <cstddef>

namespace kerno::test {

#ifdef _WIN32

using Socket = SOCKET;
using SendLength = int;
using SocketPoll = WSAPOLLFD;
inline constexpr int kNoSignal = 0;

struct SocketLibrary {
  SocketLibrary() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
  }
};
inline Socket OpenSocket() {
  static const SocketLibrary library;
  return socket(AF_INET, SOCK_STREAM, 0);
}
inline void CloseSocket(Socket s) {
  closesocket(s);
}
inline int Poll(SocketPoll* polls, unsigned long count, int milliseconds) {
  return WSAPoll(polls, count, milliseconds);
}

#else

using Socket = int;
using SendLength = size_t;
using SocketPoll = pollfd;
inline constexpr int kNoSignal = MSG_NOSIGNAL;

inline Socket OpenSocket() {
  return socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
}
inline void CloseSocket(Socket s) {
  close(s);
}
inline int Poll(SocketPoll* polls, unsigned long count, int milliseconds) {
  return poll(polls, count, milliseconds);
}

#endif

}  // namespace kerno::test
