#include "Host/Page/WebSocketConnection.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket/stream.hpp>
#include <deque>
#include <utility>

#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Foundation/NSRunLoopCore.h"

namespace quaverly::page {
namespace {

namespace asio = boost::asio;
namespace websocket = boost::beast::websocket;
using boost::beast::flat_buffer;
using Error = boost::beast::error_code;

std::string_view textIn(const flat_buffer& buffer) {
  const auto bytes = buffer.cdata();
  return {static_cast<const char*>(bytes.data()), bytes.size()};
}

class WebSocketConnection : public KeptConnection,
                            public PageConnection,
                            public std::enable_shared_from_this<WebSocketConnection> {
 public:
  WebSocketConnection(int descriptor, std::string head, const std::shared_ptr<PageSite>& site)
      : _stream(NSRunLoop::mainRunLoop().core().context()), _head(std::move(head)), _site(site) {
    Error ignored;
    _stream.next_layer().assign(asio::ip::tcp::v4(), descriptor, ignored);
    // The other time limits are ours, by the device's clock.
    _stream.set_option(
        websocket::stream_base::timeout{handshakeLimit, websocket::stream_base::none(), false});
    _stream.read_message_max(maximumMessage);
    _stream.auto_fragment(false);
    ++site->webSockets;
  }

  void accept() {
    _stream.async_accept(asio::buffer(_head), [self = shared_from_this()](Error error) {
      if (error) return self->close();
      self->_isOpen = true;
      if (const auto site = self->_site.lock()) site->delegate.connected(*self);
      self->read();
    });
  }

  void send(std::string text) override {
    if (_isClosed) return;
    _queuedBytes += text.size();
    _queue.push_back(std::move(text));
    if (_queuedBytes > maximumQueue) return close();
    if (_queue.size() == 1) sendFront();
  }
  size_t queuedBytes() const override { return _queuedBytes; }

  void close() override {
    if (_isClosed) return;
    abandon();
    // Told in a later turn: whoever closes may be going through its connections.
    NSRunLoop::mainRunLoop().performBlock([self = shared_from_this()] { self->tellEnd(); });
  }

  void abandon() override {
    _isClosed = true;
    _sending.reset();
    _pause.reset();
    Error ignored;
    _stream.next_layer().close(ignored);
  }
  bool isIdle() const override { return false; }

 private:
  void read() {
    if (_isClosed) return;
    _stream.async_read(_buffer,
                       [self = shared_from_this()](Error error, size_t) { self->gotMessage(error); });
  }

  void gotMessage(Error error) {
    const auto site = _site.lock();
    if (error || !site || _isClosed) return close();
    _stream.got_text() ? site->delegate.received(*this, textIn(_buffer))
                       : site->delegate.receivedBinary(*this, textIn(_buffer));
    _buffer.consume(_buffer.size());
    countMessage();
  }

  // A page that sends faster than anybody types waits; everybody else goes on.
  void countMessage() {
    const auto now = Device::current().clock->now();
    if (now - _windowStart >= messageWindow) {
      _windowStart = now;
      _messages = 0;
    }
    if (++_messages < messagesPerWindow) return read();
    _pause = Device::current().clock->after(_windowStart + messageWindow - now, [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->read();
    });
  }

  void sendFront() {
    _sending = Device::current().clock->after(sendLimit, [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->close();
    });
    _stream.text(true);
    _stream.async_write(asio::buffer(_queue.front()), [self = shared_from_this()](Error error, size_t) {
      self->_sending.reset();
      if (error || self->_isClosed) return self->close();
      self->_queuedBytes -= self->_queue.front().size();
      self->_queue.pop_front();
      if (!self->_queue.empty()) self->sendFront();
    });
  }

  void tellEnd() {
    const auto site = _site.lock();
    if (!site) return;
    --site->webSockets;
    if (std::exchange(_isOpen, false)) site->delegate.disconnected(*this);
    site->forget(*this);
  }

  websocket::stream<asio::ip::tcp::socket> _stream;
  std::string _head;
  std::weak_ptr<PageSite> _site;
  flat_buffer _buffer;
  std::deque<std::string> _queue;  // the first is being sent
  size_t _queuedBytes = 0;
  Clock::Instant _windowStart{};
  unsigned _messages = 0;
  std::unique_ptr<Clock::Alarm> _sending, _pause;
  bool _isOpen = false;
  bool _isClosed = false;
};

}  // namespace

void serveWebSocket(int descriptor, std::string head, const std::shared_ptr<PageSite>& site) {
  const auto connection = std::make_shared<WebSocketConnection>(descriptor, std::move(head), site);
  site->keep(connection);
  connection->accept();
}

}  // namespace quaverly::page
