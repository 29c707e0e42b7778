#include "Platform/Foundation/Sockets/ConnectionAcceptor.h"

#include <sys/socket.h>

#include <cerrno>
#include <utility>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/Sockets/PeerGuard.h"

namespace quaverly {

ConnectionAcceptor::ConnectionAcceptor(std::shared_ptr<Descriptor> listener)
    : _listener(std::move(listener)) {}

ConnectionAcceptor::~ConnectionAcceptor() {
  _listener->forget(Descriptor::Event::readable);
}

void ConnectionAcceptor::acceptNext(Callback callback) {
  _callback = std::move(callback);
  // Trying first and watching only when nobody is there saves a busy server a look at the watch each time.
  _turn.call([this] { tryToAccept(); });
}

void ConnectionAcceptor::tryToAccept() {
  const int number = ::accept4(_listener->number(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
  if (number < 0) return retryAfter(errno);
  auto connection = std::make_shared<Descriptor>(number);
  if (!isPeerThisUser(*connection)) return _turn.call([this] { tryToAccept(); });
  // The callback may end this object.
  const auto callback = std::exchange(_callback, nullptr);
  callback(std::move(connection));
}

void ConnectionAcceptor::retryAfter(int error) {
  switch (error) {
    case EAGAIN:
      return _listener->wait(Descriptor::Event::readable, [this] { tryToAccept(); });
    case EMFILE:
    case ENFILE:
    case ENOBUFS:
    case ENOMEM:
      // The connection stays in the queue, so the listener stays readable: only time helps.
      _backOff = Device::current().clock->after(backOff, [this] { tryToAccept(); });
      return;
    case EBADF:
    case EINVAL:
      return;  // closed, or not listening: nobody will ever come
    default:
      // This connection broke before it was taken; the next may be well.
      return _turn.call([this] { tryToAccept(); });
  }
}

}  // namespace quaverly
