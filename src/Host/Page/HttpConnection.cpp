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

#include "Host/Page/AnswerPieces.h"
#include "Host/Page/WebSocketConnection.h"
#include "Platform/Device/Device.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Foundation/NSRunLoopCore.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::page {
namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using boost::beast::flat_buffer;
using Error = boost::beast::error_code;
using Fields = http::request<http::empty_body>;

/// How much of a refused request's body is read so that its sender gets to see the answer.
constexpr size_t maximumDrain = size_t{1024} * 1024;
constexpr std::chrono::seconds drainLimit{2};

/// A field that may stand there once; one that is there twice is "?", which nobody expects.
std::optional<std::string> single(const Fields& head, http::field name) {
  const size_t count = head.count(name);
  if (count == 0) return std::nullopt;
  return count == 1 ? std::string(head[name]) : "?";
}

std::string single(const Fields& head, const char* name) {
  const size_t count = head.count(name);
  if (count == 0) return {};
  return count == 1 ? std::string(head[name]) : "?";
}

bool wantsWebSocket(const Fields& head) {
  return head.count(http::field::upgrade) > 0;
}

RequestFacts factsOf(const Fields& head) {
  RequestFacts facts;
  facts.method = std::string(head.method_string());
  facts.target = std::string(head.target());
  facts.host = single(head, http::field::host).value_or("");
  facts.origin = single(head, http::field::origin);
  facts.fetchSite = single(head, "Sec-Fetch-Site");
  facts.fetchMode = single(head, "Sec-Fetch-Mode");
  facts.fetchDestination = single(head, "Sec-Fetch-Dest");
  facts.cookie = single(head, http::field::cookie).value_or("");
  facts.wantsWebSocket = wantsWebSocket(head);
  return facts;
}

/// The head as text again.
std::string textOf(const Fields& head) {
  std::string text = std::string(head.method_string()) + " " + std::string(head.target()) + " HTTP/1.1\r\n";
  for (const auto& field : head) {
    text.append(field.name_string()).append(": ").append(field.value()).append("\r\n");
  }
  return text + "\r\n";
}

PageAnswer refusal() {
  return PageAnswer::message(403, "This address is not for everyone",
                             "Only the browser that Quaverly was opened in may see its page. Run "
                             "<code>quaverly serve</code> and open the address that it prints, as a whole. "
                             "If it runs already, run it once more: it then says where it is.");
}

/// Goes on to "/" by itself, so that the token leaves the address bar. A redirect would not do: a browser
/// that comes from elsewhere would still count as coming from there, and leave the cookie out.
PageAnswer entrance(const PageGuard& guard) {
  auto answer = PageAnswer::message(200, "Quaverly", "<a href=\"/\">Go on</a>");
  answer.moreFields.emplace_back("Refresh", "0; url=/");
  answer.moreFields.emplace_back("Set-Cookie", guard.cookieField());
  return answer;
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
    const auto& head = _parser->get();
    _keepsAlive = head.keep_alive();
    _isHead = head.method() == http::verb::head;
    _conditions = {std::string(head[http::field::range]), std::string(head[http::field::if_none_match])};
    switch (site->guard.judge(factsOf(head))) {
      case Admission::refused:
        return refuse(refusal());
      case Admission::enters:
        return answer(entrance(site->guard));
      case Admission::admitted:
        return wantsWebSocket(head) ? becomeWebSocket(*site) : route(*site);
    }
  }

  void becomeWebSocket(PageSite& site) {
    if (site.webSockets >= PageSite::maximumWebSockets) {
      return refuse(PageAnswer::message(503, "Too many pages", "Close another page of Quaverly first."));
    }
    Error error;
    const int descriptor = _socket.release(error);
    std::string head = textOf(_parser->get());
    if (!error) serveWebSocket(descriptor, std::move(head), _site.lock());
    end();
  }

  void route(const PageSite& site) {
    const auto& head = _parser->get();
    PageRequest request;
    const std::string target(head.target());
    const size_t mark = target.find('?');
    const auto path = NSStringByRemovingPercentEncoding(target.substr(0, mark));
    if (!path || path->find('\0') != std::string::npos || !site.routes.knows(*path)) {
      return refuse(PageAnswer::notFound());
    }
    request.path = *path;
    if (mark != std::string::npos) request.query = target.substr(mark + 1);
    request.ifNoneMatch = _conditions.ifNoneMatch;
    const bool posts = head.method() == http::verb::post;
    request.method = posts ? PageMethod::post : PageMethod::get;
    const bool isUsual = posts || _isHead || head.method() == http::verb::get;
    if (!isUsual || !site.routes.takes(request.method, request.path)) return refuseMethod();
    if (posts) return readBody(std::move(request));
    if (!_parser->is_done())
      return refuse(PageAnswer::message(400, "Not understood", "No body belongs here."));
    ask(site, std::move(request));
  }

  void refuseMethod() {
    auto answer = PageAnswer::message(405, "Not that way", "This address does not answer such a request.");
    answer.moreFields.emplace_back("Allow", "GET, HEAD, POST");
    refuse(std::move(answer));
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
    _pieces = AnswerPieces(std::move(head), _isHead ? NSData() : std::move(answer.body));
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
  AnswerConditions _conditions;
  AnswerPieces _pieces;
  bool _isIdle = true;
  bool _keepsAlive = false;
  bool _isHead = false;
  bool _drains = false;
};

}  // namespace

void serveConnection(int descriptor, const std::shared_ptr<PageSite>& site) {
  const auto connection = std::make_shared<HttpConnection>(descriptor, site);
  site->keep(connection);
  connection->readHead(headLimit);
}

}  // namespace quaverly::page
