// What the two threads of an HTTP request share.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/http_session.h"
#include "platform/win32/windows_api.h"

namespace kerno {

// How far a request is.
enum class HttpPhase { kConnecting, kSending, kAnswering, kEnded };

// What the thread that makes the calls shares with the one that watches: the handles of the
// session, the connection and the request, the bytes to send, and how far things are.
class HttpExchange {
 public:
  using Time = std::chrono::steady_clock;
  using Piece = std::array<char, 8 * 1024>;  // bytes handed to the connection at once

  struct State {
    HttpPhase phase = HttpPhase::kConnecting;
    size_t sent = 0;
    Time::time_point moved = Time::now();  // the last change
    Time::time_point all_sent = moved;
  };

  explicit HttpExchange(std::string_view body) : body_(body) {}
  ~HttpExchange() { Close(); }
  HttpExchange(const HttpExchange&) = delete;
  HttpExchange& operator=(const HttpExchange&) = delete;

  // Keeps a handle just made; false when there is none, or everything is to end.
  bool Keep(HINTERNET handle) {
    if (handle == nullptr) return false;
    const std::lock_guard lock(mutex_);
    handles_.push_back(handle);
    if (closed_) SetLastError(ERROR_INTERNET_OPERATION_CANCELLED);
    return !closed_;
  }
  HINTERNET last() {
    const std::lock_guard lock(mutex_);
    return handles_.empty() ? nullptr : handles_.back();
  }

  // The calls that wait on the handles come back with an error; the body is not touched any more.
  void Close() {
    std::vector<HINTERNET> handles;
    {
      const std::lock_guard lock(mutex_);
      closed_ = true;
      handles.swap(handles_);
    }
    for (size_t i = handles.size(); i-- > 0;) InternetCloseHandle(handles[i]);
  }

  // Whether what fails now fails because of that.
  bool IsClosed() {
    const std::lock_guard lock(mutex_);
    return closed_;
  }

  // Shows the reply as far as it is known; the watching thread may take it at any moment.
  void Publish(const HttpReply& reply) {
    const std::lock_guard lock(mutex_);
    reply_ = reply;
    state_.moved = Time::now();
  }
  HttpReply TakeReply() {
    const std::lock_guard lock(mutex_);
    return std::move(reply_);
  }

  // Copies the next bytes of the body; none at its end, or when everything is to end.
  size_t NextPiece(Piece* piece) {
    const std::lock_guard lock(mutex_);
    return closed_ ? 0 : body_.copy(piece->data(), piece->size(), state_.sent);
  }

  void Enter(HttpPhase phase) {
    const std::lock_guard lock(mutex_);
    state_.phase = phase;
    state_.moved = state_.all_sent = Time::now();
    changed_.notify_all();
  }
  void Sent(size_t count) {
    const std::lock_guard lock(mutex_);
    state_.sent += count;
    state_.moved = state_.all_sent = Time::now();
  }
  // The state after this time, or at the end.
  State Wait(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, time, [this] { return state_.phase == HttpPhase::kEnded; });
    return state_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool closed_ = false;
  std::vector<HINTERNET> handles_;
  const std::string_view body_;
  State state_;
  HttpReply reply_;
};

}  // namespace kerno
