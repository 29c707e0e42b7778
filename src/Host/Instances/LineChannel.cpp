#include "Host/Instances/LineChannel.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <utility>

namespace quaverly::instances {

LineChannel::LineChannel(std::shared_ptr<Descriptor> connection, OnLine onLine, OnEnd onEnd)
    : _connection(std::move(connection)),
      _onLine(std::make_shared<OnLine>(std::move(onLine))),
      _onEnd(std::move(onEnd)) {
  waitForBytes();
}

void LineChannel::waitForBytes() {
  _connection->wait(Descriptor::Event::readable, [this] { readBytes(); });
}

void LineChannel::readBytes() {
  std::array<char, 16 * 1024> buffer;
  const ssize_t count = ::recv(_connection->number(), buffer.data(), buffer.size(), MSG_DONTWAIT);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return waitForBytes();
  if (count <= 0) return end();
  _received.append(buffer.data(), static_cast<size_t>(count));
  if (!tellLines()) return;
  _received.size() > maximumLine ? end() : waitForBytes();
}

// False when this object has gone meanwhile.
bool LineChannel::tellLines() {
  const std::weak_ptr<OnLine> alive = _onLine;
  for (size_t at = _received.find('\n'); at != std::string::npos; at = _received.find('\n')) {
    const std::string line = _received.substr(0, at);
    _received.erase(0, at + 1);
    const auto onLine = alive.lock();
    (*onLine)(line);
    if (alive.use_count() == 1) return false;
  }
  return true;
}

void LineChannel::send(std::string_view line) {
  const bool isWriting = !_queue.empty();
  _queue.append(line).append("\n");
  if (_queue.size() > maximumQueue) {
    _queue.clear();
    ::shutdown(_connection->number(), SHUT_RDWR);  // its end is then read, in a later turn
  } else if (!isWriting) {
    writeBytes();
  }
}

void LineChannel::writeBytes() {
  const ssize_t count =
      ::send(_connection->number(), _queue.data(), _queue.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
  if (count > 0) _queue.erase(0, static_cast<size_t>(count));
  const bool isBroken = count < 0 && errno != EAGAIN && errno != EINTR;
  if (isBroken) _queue.clear();  // what there is to read still says how it ended
  if (_queue.empty()) return;
  _connection->wait(Descriptor::Event::writable, [this] { writeBytes(); });
}

void LineChannel::end() {
  _connection->close();
  if (const auto onEnd = std::exchange(_onEnd, nullptr)) onEnd();
}

}  // namespace quaverly::instances
