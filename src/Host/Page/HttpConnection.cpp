#include "Host/Page/HttpConnection.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <optional>
#include <utility>
#include <variant>

#include "Host/Page/AnswerPieces.h"
#include "Host/Page/Arrival.h"
#include "Host/Page/BrowserRequest.h"
#include "Host/Page/WebSocketConnection.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Foundation/NSRunLoopCore.h"

namespace quaverly::page {
namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using boost::beast::flat_buffer;
using Error = boost::beast::error_code;

BrowserRequest requestOf(const http::request<http::empty_body>& head) {
  BrowserRequest request{std::string(head.method_string()), std::string(head.target()), {}};
  for (const auto& field : head)
    request.fields.emplace_back(std::string(field.name_string()), std::string(field.value()));
  return request;
}

class HttpConnection : public KeptConnection, public std::enable_shared_from_this<HttpConnection> {
 public:
  HttpConnection(int descriptor, std::weak_ptr<PageSite> site)
      : _socket(NSRunLoop::mainRunLoop().core().context()), _site(std::move(site)) {
    Error ignored;
    _socket.assign(asio::ip::tcp::v4(), descriptor, ignored);
    _socket.set_option(asio::ip::tcp::no_delay(true), ignored);
  }

  void readHead(std::chrono::seconds limit) {
    _isIdle = true;
    _parser.emplace();
    _parser->header_limit(maximumHeadSize);
    _parser->body_limit(PageRoutes::maximumBody);
    setAlarm(limit);
    http::async_read_header(_socket, _buffer, *_parser,
                            [self = shared_from_this()](Error error, size_t) { self->gotHead(error); });
  }

  void abandon() override {
    _alarm.reset();
    Error ignored;
    _socket.close(ignored);
  }
  bool isIdle() const override { return _isIdle; }

 private:
  void gotHead(Error error) {
    const auto site = _site.lock();
    if (error || !site) return end();
    _isIdle = false;
    _keepsAlive = _parser->get().keep_alive();
    _request = requestOf(_parser->get());
    _conditions = {_request.field("Range").value_or(""), _request.field("If-None-Match").value_or("")};
    switch (site->guard.judge(factsOf(_request))) {
      case Admission::refused:
        return refuse(refusal());
      case Admission::enters:
        return answer(entrance(site->guard));
      case Admission::admitted:
        return _request.wantsWebSocket() ? becomeWebSocket(*site) : route(*site);
    }
  }

  void becomeWebSocket(PageSite& site) {
    if (site.webSockets >= PageSite::maximumWebSockets) return refuse(tooManyPages());
    Error error;
    const int descriptor = _socket.release(error);
    if (!error) serveWebSocket(descriptor, _request.text(), _site.lock());
    end();
  }

  void route(const PageSite& site) {
    auto routed = routedRequest(_request, site.routes);
    if (auto* const problem = std::get_if<PageAnswer>(&routed)) return refuse(std::move(*problem));
    auto& request = std::get<PageRequest>(routed);
    if (request.method == PageMethod::post) return readBody(std::move(request));
    if (!_parser->is_done())
      return refuse(PageAnswer::message(400, "Not understood", "No body belongs here."));
    ask(site, std::move(request));
  }

  void readBody(PageRequest request) {
    setAlarm(bodyLimit);
    auto parser = std::make_shared<http::request_parser<http::string_body>>(std::move(*_parser));
    parser->body_limit(PageRoutes::maximumBody);
    http::async_read(
        _socket, _buffer, *parser,
        [self = shared_from_this(), parser, request = std::move(request)](Error error, size_t) mutable {
          const auto site = self->_site.lock();
          if (error || !site) return self->end();
          request.body = std::move(parser->get().body());
          self->ask(*site, std::move(request));
        });
  }

  // The answer may come from another thread, and after this connection's end.
  void ask(const PageSite& site, PageRequest request) {
    _alarm.reset();
    site.routes.ask(std::move(request), PageReply([weak = weak_from_this()](PageAnswer answer) {
                      NSRunLoop::mainRunLoop().performBlock([weak, answer = std::move(answer)]() mutable {
                        if (const auto self = weak.lock()) self->answer(std::move(answer));
                      });
                    }));
  }

  /// Answers without having read the whole request; the connection ends.
  void refuse(PageAnswer refusal) {
    _keepsAlive = false;
    _drains = true;
    answer(std::move(refusal));
  }

  void answer(PageAnswer answer) {
    const auto site = _site.lock();
    if (!site) return end();
    answer = underConditions(std::move(answer), _conditions);
    std::string head = headOf(answer, site->guard.host(), _keepsAlive);
    _pieces = AnswerPieces(std::move(head), _request.method == "HEAD" ? NSData() : std::move(answer.body));
    sendPiece();
  }

  void sendPiece() {
    if (!_pieces.next()) return _pieces.isBroken() ? end() : answered();
    setAlarm(progressLimit);
    const auto piece = _pieces.piece();
    asio::async_write(
        _socket, asio::buffer(piece.data(), piece.size()),
        [self = shared_from_this()](Error error, size_t) { error ? self->end() : self->sendPiece(); });
  }

  void answered() {
    _pieces = {};
    if (_keepsAlive) return readHead(idleLimit);
    Error ignored;
    _socket.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    if (!_drains) return end();
    setAlarm(drainLimit);
    drain(0);
  }

  void drain(size_t drained) {
    if (drained > maximumDrain) return end();
    _buffer.clear();
    _socket.async_read_some(_buffer.prepare(maximumHeadSize),
                            [self = shared_from_this(), drained](Error error, size_t count) {
                              error ? self->end() : self->drain(drained + count);
                            });
  }

  void setAlarm(std::chrono::seconds limit) {
    _alarm = Device::current().clock->after(limit, [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->end();
    });
  }

  void end() {
    abandon();
    if (const auto site = _site.lock()) site->forget(*this);
  }

  asio::ip::tcp::socket _socket;
  std::weak_ptr<PageSite> _site;
  flat_buffer _buffer{2 * maximumHeadSize};
  std::optional<http::request_parser<http::empty_body>> _parser;
  std::unique_ptr<Clock::Alarm> _alarm;
  BrowserRequest _request;
  AnswerConditions _conditions;
  AnswerPieces _pieces;
  bool _isIdle = true;
  bool _keepsAlive = false;
  bool _drains = false;
};

}  // namespace

void serveConnection(int descriptor, const std::shared_ptr<PageSite>& site) {
  const auto connection = std::make_shared<HttpConnection>(descriptor, site);
  site->keep(connection);
  connection->readHead(headLimit);
}

}  // namespace quaverly::page
