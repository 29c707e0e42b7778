#include "Support/TestPeer.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string_view>

namespace quaverly::test {
namespace {

/// Waits a little for something to read; a peer that ends looks up in between.
bool isReadable(int descriptor) {
  pollfd waiting{descriptor, POLLIN, 0};
  return poll(&waiting, 1, 20) > 0;
}

}  // namespace

TestPeer::TestPeer(Answer answer, Afterwards afterwards)
    : _answer(std::move(answer)), _afterwards(afterwards), _listener(socket(AF_INET, SOCK_STREAM, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (bind(_listener, generic, size) != 0 || listen(_listener, 16) != 0) throw std::runtime_error("no port");
  getsockname(_listener, generic, &size);
  _port = ntohs(address.sin_port);
  _thread = std::thread([this] { run(); });
}

TestPeer::~TestPeer() {
  _ends = true;
  _thread.join();
  close(_listener);
}

std::string TestPeer::url(const std::string& pathAndQuery) const {
  return "http://localhost:" + std::to_string(_port) + pathAndQuery;
}

std::string TestPeer::lastHead() const {
  std::lock_guard lock(_mutex);
  return _lastHead;
}

std::string TestPeer::ok(const std::string& body) {
  return "HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\n\r\n" + body;
}

void TestPeer::run() {
  while (!_ends) {
    if (!isReadable(_listener)) continue;
    const int connection = accept(_listener, nullptr, nullptr);
    if (connection < 0) continue;
    serve(connection);
    close(connection);
  }
}

void TestPeer::serve(int connection) {
  std::string head;
  std::array<char, 4096> piece{};
  while (!head.ends_with("\r\n\r\n") && !_ends) {
    if (!isReadable(connection)) continue;
    const ssize_t count = read(connection, piece.data(), piece.size());
    if (count <= 0) return;
    head.append(piece.data(), static_cast<size_t>(count));
  }
  {
    std::lock_guard lock(_mutex);
    _lastHead = head;
  }
  ++_requests;
  const std::string answer = _answer(head);
  for (size_t sent = 0; sent < answer.size();) {
    const ssize_t count = send(connection, answer.data() + sent, answer.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return;
    sent += static_cast<size_t>(count);
  }
  while (_afterwards == Afterwards::keepSilent && !_ends) {
    if (isReadable(connection) && read(connection, piece.data(), piece.size()) <= 0) return;
  }
}

}  // namespace quaverly::test
