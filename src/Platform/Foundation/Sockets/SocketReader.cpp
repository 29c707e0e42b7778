#include "Platform/Foundation/Sockets/SocketReader.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <utility>

#include "Platform/Device/Device.h"

namespace quaverly {

SocketReader::SocketReader(std::shared_ptr<Descriptor> descriptor, std::optional<Clock::Instant> deadline)
    : _descriptor(std::move(descriptor)), _deadline(deadline) {}

SocketReader::~SocketReader() {
  _descriptor->forget(Descriptor::Event::readable);
}

void SocketReader::whenAvailable(std::function<void()> callback) {
  _callback = std::move(callback);
  _turn.call([this] { tryToRead(); });
}

NSData SocketReader::availableData() {
  read();
  return std::exchange(_ahead, NSData());
}

void SocketReader::tryToRead() {
  read();
  if (_ahead.length() > 0 || _hasEnded) return tell();
  _descriptor->wait(Descriptor::Event::readable, [this] { tryToRead(); });
  if (!_deadline || _deadlineAlarm) return;
  auto& clock = *Device::current().clock;
  _deadlineAlarm = clock.after(*_deadline - clock.now(), [this] { end(); });
}

void SocketReader::read() {
  if (_ahead.length() > 0 || _hasEnded) return;
  static std::array<char, 64 * 1024> buffer;
  const ssize_t count = ::recv(_descriptor->number(), buffer.data(), buffer.size(), 0);
  if (count > 0) {
    _ahead = NSData(std::string_view(buffer.data(), static_cast<size_t>(count)));
  } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
    _hasEnded = true;
  }
}

void SocketReader::end() {
  _hasEnded = true;
  _ahead = NSData();
  _turn.cancel();
  _descriptor->forget(Descriptor::Event::readable);
  if (_callback) tell();
}

void SocketReader::tell() {
  // The callback may end this object.
  const auto callback = std::exchange(_callback, nullptr);
  callback();
}

}  // namespace quaverly
