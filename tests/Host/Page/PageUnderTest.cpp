#include "Host/Page/PageUnderTest.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Support/NetworkNamespace.h"

namespace quaverly::page {

Answer answerIn(const std::string& text) {
  Answer answer;
  const size_t end = text.find("\r\n\r\n");
  if (!text.starts_with("HTTP/1.1 ") || end == std::string::npos) return answer;
  answer.status = std::stoi(text.substr(9, 3));
  answer.body = text.substr(end + 4);
  for (size_t at = text.find("\r\n") + 2; at < end;) {
    const size_t line = text.find("\r\n", at);
    const size_t colon = text.find(": ", at);
    answer.fields[text.substr(at, colon - at)] = text.substr(colon + 2, line - colon - 2);
    at = line + 2;
  }
  return answer;
}

PageUnderTest::PageUnderTest() {
  test::enterOwnNetwork();
  folder.write("index.html", "<p>the page</p>");
  folder.write("style.css", "p { color: red }");
  server = std::make_unique<PageServer>(PageSettings{std::nullopt, folder.path()}, recorder);
  const auto failure = server->start();
  EXPECT_FALSE(failure) << failure->reason;
  const auto field = get("/?token=" + token(), {{"Cookie", ""}}).fields["Set-Cookie"];
  _cookie = field.substr(0, field.find(';'));
}

std::string PageUnderTest::token() const {
  return server->address().substr(server->address().find('=') + 1);
}

std::string PageUnderTest::request(const std::string& line, const Fields& fields) const {
  Fields all = {{"Host", "127.0.0.1:8181"}, {"Cookie", _cookie}, {"Connection", "close"}};
  for (const auto& [name, value] : fields) all[name] = value;
  std::string text = line + " HTTP/1.1\r\n";
  for (const auto& [name, value] : all) {
    if (!value.empty()) text.append(name).append(": ").append(value).append("\r\n");
  }
  return text + "\r\n";
}

Answer PageUnderTest::ask(const std::string& line, const Fields& fields, const std::string& body) {
  auto client = connect();
  client.send(request(line, fields) + body);
  return answerIn(client.receiveToEnd().value_or(""));
}

RawWebSocket::RawWebSocket(PageUnderTest& page, const PageUnderTest::Fields& fields)
    : _client(page.connect()) {
  PageUnderTest::Fields all = {{"Connection", "Upgrade"},
                               {"Upgrade", "websocket"},
                               {"Origin", page.origin()},
                               {"Sec-WebSocket-Version", "13"},
                               {"Sec-WebSocket-Key", "dGhlIHNhbXBsZSBub25jZQ=="}};
  for (const auto& [name, value] : fields) all[name] = value;
  _client.send(page.request("GET /socket", all));
  test::runLoopUntil([&] {
    _buffer += _client.received();
    return _buffer.find("\r\n\r\n") != std::string::npos || _client.hasEnded() || _client.isBroken();
  });
  const auto answer = answerIn(_buffer);
  _status = answer.status;
  if (_status == 101) _buffer = answer.body;
  test::settleLoop();  // the delegate hears of it after the client
}

std::string RawWebSocket::frame(unsigned char firstByte, std::string_view payload) {
  std::string text(1, static_cast<char>(firstByte));
  const size_t size = payload.size();
  if (size < 126) {
    text += static_cast<char>(0x80 | size);
  } else {
    const int bytes = size < 65536 ? 2 : 8;
    text += static_cast<char>(0x80 | (bytes == 2 ? 126 : 127));
    for (int i = bytes - 1; i >= 0; --i) text += static_cast<char>(size >> (8 * i) & 0xff);
  }
  const std::string mask = "mask";
  text += mask;
  for (size_t i = 0; i < size; ++i) text += static_cast<char>(payload[i] ^ mask[i % 4]);
  return text;
}

bool RawWebSocket::send(unsigned char firstByte, std::string_view payload) {
  return _client.send(frame(firstByte, payload));
}

std::optional<RawWebSocket::Frame> RawWebSocket::frameInBuffer() {
  if (_buffer.size() < 2) return std::nullopt;
  const auto byte = [&](size_t at) { return static_cast<unsigned char>(_buffer[at]); };
  const size_t sizeBytes = byte(1) == 126 ? 2 : byte(1) == 127 ? 8 : 0;
  if (_buffer.size() < 2 + sizeBytes) return std::nullopt;
  size_t size = sizeBytes == 0 ? byte(1) : 0;
  for (size_t i = 0; i < sizeBytes; ++i) size = size << 8 | byte(2 + i);
  if (_buffer.size() < 2 + sizeBytes + size) return std::nullopt;
  Frame frame{byte(0), _buffer.substr(2 + sizeBytes, size)};
  _buffer.erase(0, 2 + sizeBytes + size);
  return frame;
}

std::optional<RawWebSocket::Frame> RawWebSocket::receive() {
  std::optional<Frame> frame;
  test::runLoopUntil([&] {
    _buffer += _client.received();
    frame = frameInBuffer();
    return frame || _client.hasEnded() || _client.isBroken();
  });
  return frame;
}

bool RawWebSocket::endsSoon() {
  return test::runLoopUntil([&] {
    _client.received();
    return _client.hasEnded() || _client.isBroken();
  });
}

}  // namespace quaverly::page
