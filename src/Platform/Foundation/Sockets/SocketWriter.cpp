#include "Platform/Foundation/Sockets/SocketWriter.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <csignal>
#include <utility>

#include "Platform/Device/Device.h"

namespace quaverly {
namespace {

/// Sending a file to a peer that is gone would otherwise end the process: unlike for bytes, there is no flag
/// against it.
void ignoreBrokenPipes() {
  static const auto earlier = std::signal(SIGPIPE, SIG_IGN);
  static_cast<void>(earlier);
}

void setCork(const Descriptor& descriptor, int value) {
  ::setsockopt(descriptor.number(), IPPROTO_TCP, TCP_CORK, &value, sizeof value);
}

Clock::Instant now() {
  return Device::current().clock->now();
}

}  // namespace

SocketWriter::SocketWriter(std::shared_ptr<Descriptor> descriptor) : _descriptor(std::move(descriptor)) {
  ignoreBrokenPipes();
}

SocketWriter::~SocketWriter() {
  _descriptor->forget(Descriptor::Event::writable);
}

bool SocketWriter::write(const NSData& data) {
  if (_state == State::cutShort || _state == State::broken) return false;
  if (data.length() == 0) return true;
  _queue.append(data);
  if (_state == State::sending) return true;
  _lastProgress = now();
  cork();
  send();
  return _state != State::broken;
}

void SocketWriter::whenSettled(std::function<void()> callback) {
  _whenSettled = std::move(callback);
  if (_state != State::sending) settle(_state);
}

void SocketWriter::send() {
  _turn.cancel();  // news of an earlier end of sending is news no more
  const auto [outcome, sent] = _queue.send(_descriptor->number(), allowancePerTurn);
  if (sent > 0) _lastProgress = now();
  _state = State::sending;
  switch (outcome) {
    case SendQueue::Outcome::drained:
      return settle(State::drained);
    case SendQueue::Outcome::full:
      return waitForRoom();
    case SendQueue::Outcome::allowanceSpent:
      return _turn.call([this] { send(); });
    case SendQueue::Outcome::sourceEnded:
      return settle(State::cutShort);
    case SendQueue::Outcome::broken:
      return settle(State::broken);
  }
}

void SocketWriter::settle(State state) {
  _state = state;
  _queue.clear();
  _stallAlarm.reset();
  _descriptor->forget(Descriptor::Event::writable);
  // So that whoever reads from the connection learns of it too.
  if (state == State::broken) ::shutdown(_descriptor->number(), SHUT_RDWR);
  _turn.call([this] {
    uncork();
    if (const auto callback = std::exchange(_whenSettled, nullptr)) callback();
  });
}

void SocketWriter::waitForRoom() {
  _descriptor->wait(Descriptor::Event::writable, [this] { send(); });
  if (!_stallAlarm) setStallAlarm(stallLimit);
}

void SocketWriter::setStallAlarm(Clock::Duration delay) {
  _stallAlarm = Device::current().clock->after(delay, [this] { checkForStall(); });
}

void SocketWriter::checkForStall() {
  // Progress only notes its time; the alarm catches up with it.
  const auto left = _lastProgress + stallLimit - now();
  if (left > Clock::Duration::zero()) return setStallAlarm(left);
  settle(State::broken);
}

void SocketWriter::cork() {
  if (!std::exchange(_isCorked, true)) setCork(*_descriptor, 1);
}

void SocketWriter::uncork() {
  if (std::exchange(_isCorked, false)) setCork(*_descriptor, 0);
}

}  // namespace quaverly
