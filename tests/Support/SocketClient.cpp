#include "Support/SocketClient.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <utility>

#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly::test {

using namespace std::chrono_literals;

bool runLoopUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    NSRunLoop::mainRunLoop().runOnce(1ms);
  }
  return true;
}

void settleLoop() {
  while (NSRunLoop::mainRunLoop().runOnce(2ms)) {
  }
}

SocketClient::SocketClient(const char* address, int port)
    : _descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons(static_cast<uint16_t>(port));
  ::inet_pton(AF_INET, address, &to.sin_addr);
  if (::connect(_descriptor, reinterpret_cast<const sockaddr*>(&to), sizeof to) != 0) {
    ::close(_descriptor);
    throw std::runtime_error("nobody listens");
  }
  ::fcntl(_descriptor, F_SETFL, O_NONBLOCK);
}

SocketClient::SocketClient(SocketClient&& other) noexcept
    : _descriptor(std::exchange(other._descriptor, -1)), _state(other._state) {}

SocketClient::~SocketClient() {
  close();
}

bool SocketClient::send(std::string_view bytes) {
  return runLoopUntil([&] {
           const ssize_t count = ::send(_descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
           if (count > 0) bytes.remove_prefix(static_cast<size_t>(count));
           if (count < 0 && errno != EAGAIN) _state = State::broken;
           return bytes.empty() || isBroken();
         }) &&
         !isBroken();
}

std::string SocketClient::received() {
  std::string all;
  std::array<char, 256 * 1024> buffer;
  while (_state == State::open) {
    const ssize_t count = ::recv(_descriptor, buffer.data(), buffer.size(), 0);
    if (count > 0) all.append(buffer.data(), static_cast<size_t>(count));
    if (count == 0) _state = State::ended;
    if (count < 0 && errno == EAGAIN) break;
    if (count < 0) _state = State::broken;
  }
  return all;
}

std::optional<std::string> SocketClient::receiveToEnd() {
  std::string all;
  const bool isOver = runLoopUntil([&] {
    all += received();
    return _state != State::open;
  });
  return isOver && hasEnded() ? std::optional(all) : std::nullopt;
}

void SocketClient::finishSending() {
  ::shutdown(_descriptor, SHUT_WR);
}

void SocketClient::close() {
  if (_descriptor >= 0) ::close(std::exchange(_descriptor, -1));
}

void SocketClient::reset() {
  const linger none{.l_onoff = 1, .l_linger = 0};
  ::setsockopt(_descriptor, SOL_SOCKET, SO_LINGER, &none, sizeof none);
  close();
}

}  // namespace quaverly::test
