#include "Platform/Foundation/Sockets/ClosingConnection.h"

#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cerrno>
#include <unordered_map>
#include <utility>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSRunLoop.h"

namespace quaverly {
namespace {

/// The connections that end by themselves; this is what owns them.
std::unordered_map<const ClosingConnection*, std::unique_ptr<ClosingConnection>>& closingConnections() {
  NSRunLoop::mainRunLoop();  // which they wait for, so it goes after them
  static std::unordered_map<const ClosingConnection*, std::unique_ptr<ClosingConnection>> connections;
  return connections;
}

/// How many bytes the peer has not confirmed, the end of our side included.
int unacknowledgedBytes(const Descriptor& descriptor) {
  int count = 0;
  ::ioctl(descriptor.number(), SIOCOUTQ, &count);
  return count;
}

}  // namespace

ClosingConnection::ClosingConnection(std::shared_ptr<Descriptor> descriptor,
                                     std::unique_ptr<SocketWriter> writer)
    : _descriptor(std::move(descriptor)), _writer(std::move(writer)) {}

void ClosingConnection::close(std::shared_ptr<Descriptor> descriptor, std::unique_ptr<SocketWriter> writer) {
  if (writer->state() == SocketWriter::State::broken) return descriptor->reset();
  auto connection = std::make_unique<ClosingConnection>(std::move(descriptor), std::move(writer));
  auto& started = *connection;
  closingConnections().emplace(&started, std::move(connection));
  started.begin();
}

void ClosingConnection::begin() {
  if (_writer->state() == SocketWriter::State::sending) {
    _writer->whenSettled([this] { endSending(); });
  } else {
    endSending();
  }
  discardInput();  // last, because it may find that all is over
}

void ClosingConnection::endSending() {
  const auto state = std::exchange(_writer, nullptr)->state();
  if (state == SocketWriter::State::broken) {
    _descriptor->reset();
    return end();
  }
  // Also sends what still waits for a full packet.
  ::shutdown(_descriptor->number(), SHUT_WR);
  if (_hasPeerEnded) return end();
  _lastProgress = Device::current().clock->now();
  setAlarm();
}

void ClosingConnection::discardInput() {
  constexpr size_t perTurn = 1024 * 1024;
  // With this flag the kernel drops the bytes itself instead of copying them.
  const ssize_t count = ::recv(_descriptor->number(), nullptr, perTurn, MSG_TRUNC);
  if (count > 0) return _turn.call([this] { discardInput(); });
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
    return _descriptor->wait(Descriptor::Event::readable, [this] { discardInput(); });
  }
  _hasPeerEnded = true;
  if (!_writer) end();
}

void ClosingConnection::setAlarm() {
  _alarm = Device::current().clock->after(lingerLimit, [this] { checkPeer(); });
}

void ClosingConnection::checkPeer() {
  const auto now = Device::current().clock->now();
  const int unacknowledged = unacknowledgedBytes(*_descriptor);
  if (unacknowledged == 0) return end();
  if (std::exchange(_unacknowledged, unacknowledged) != unacknowledged) _lastProgress = now;
  if (now - _lastProgress < SocketWriter::stallLimit) return setAlarm();
  _descriptor->reset();
  end();
}

void ClosingConnection::end() {
  _descriptor->close();  // unless it was reset
  closingConnections().erase(this);
}

}  // namespace quaverly
