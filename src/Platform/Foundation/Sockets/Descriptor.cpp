#include "Platform/Foundation/Sockets/Descriptor.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <utility>

#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Foundation/NSRunLoopCore.h"

namespace quaverly {

/// The loop's eye on a descriptor. It holds the descriptor while it watches, and closes it.
class Descriptor::Watch : public std::enable_shared_from_this<Watch> {
 public:
  Watch() : _stream(NSRunLoop::mainRunLoop().core().context()) {}

  bool begin(int number) {
    boost::system::error_code error;
    _stream.assign(number, error);
    return !error;
  }

  void close() {
    boost::system::error_code ignored;
    _stream.close(ignored);
  }

  void wait(Event event, std::function<void()> callback) {
    auto& waiter = _waiters[static_cast<size_t>(event)];
    waiter.callback = std::move(callback);
    // A waiter that was forgotten leaves its watching behind; the next one takes that over.
    if (std::exchange(waiter.isWatching, true)) return;
    _stream.async_wait(event == Event::readable ? _stream.wait_read : _stream.wait_write,
                       [weak = weak_from_this(), event](boost::system::error_code) {
                         if (const auto watch = weak.lock()) watch->tell(event);
                       });
  }

  void forget(Event event) { _waiters[static_cast<size_t>(event)].callback = nullptr; }

 private:
  struct Waiter {
    std::function<void()> callback;
    bool isWatching = false;
  };

  void tell(Event event) {
    auto& waiter = _waiters[static_cast<size_t>(event)];
    waiter.isWatching = false;
    if (const auto callback = std::exchange(waiter.callback, nullptr)) callback();
  }

  boost::asio::posix::stream_descriptor _stream;
  std::array<Waiter, 2> _waiters;
};

void Descriptor::close() {
  const int number = std::exchange(_number, -1);
  if (const auto watch = std::exchange(_watch, nullptr)) {
    watch->forget(Event::readable);
    watch->forget(Event::writable);
    watch->close();
  } else if (number >= 0) {
    ::close(number);
  }
}

void Descriptor::reset() {
  const linger none{.l_onoff = 1, .l_linger = 0};
  if (_number >= 0) ::setsockopt(_number, SOL_SOCKET, SO_LINGER, &none, sizeof none);
  close();
}

void Descriptor::wait(Event event, std::function<void()> callback) {
  if (!_watch && _number >= 0) {
    _watch = std::make_shared<Watch>();
    if (!_watch->begin(_number)) {
      _watch.reset();
      close();
    }
  }
  if (_watch) return _watch->wait(event, std::move(callback));
  _unwatched[static_cast<size_t>(event)].call(std::move(callback));
}

void Descriptor::forget(Event event) {
  _unwatched[static_cast<size_t>(event)].cancel();
  if (_watch) _watch->forget(event);
}

}  // namespace quaverly
