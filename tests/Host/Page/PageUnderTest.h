#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Host/Page/PageServer.h"
#include "Support/SocketClient.h"
#include "Support/TemporaryFolder.h"
#include "Support/TestDevice.h"

namespace quaverly::page {

/// An HTTP answer, taken apart.
struct Answer {
  int status = 0;  ///< 0: the connection ended without one
  std::map<std::string, std::string> fields;
  std::string body;
};
Answer answerIn(const std::string& text);

/// What a delegate was told.
class PageRecorder : public PageDelegate {
 public:
  void connected(PageConnection& connection) override { open.push_back(&connection); }
  void received(PageConnection& connection, std::string_view text) override {
    messages.emplace_back(text);
    if (answers) connection.send("echo " + std::string(text));
  }
  void receivedBinary(PageConnection&, std::string_view bytes) override { binaries.emplace_back(bytes); }
  void disconnected(PageConnection& connection) override {
    std::erase(open, &connection);
    ++ended;
  }

  std::vector<PageConnection*> open;
  std::vector<std::string> messages, binaries;
  size_t ended = 0;
  bool answers = true;
};

/// A page server in a network of its own, with a folder of files, and a browser that has entered.
class PageUnderTest {
 public:
  PageUnderTest();

  /// Fields that take the place of the browser's own; an empty value leaves one out.
  using Fields = std::map<std::string, std::string>;
  std::string request(const std::string& line, const Fields& fields = {}) const;
  /// Sends a request on a connection of its own and waits for the end.
  Answer ask(const std::string& line, const Fields& fields = {}, const std::string& body = "");
  Answer get(const std::string& path, const Fields& fields = {}) { return ask("GET " + path, fields); }

  std::string token() const;
  std::string cookie() const { return _cookie; }
  std::string origin() const { return "http://127.0.0.1:8181"; }
  test::SocketClient connect() const { return test::SocketClient(test::SocketClient::loopback, 8181); }

  test::TestDevice device;
  test::TemporaryFolder folder;
  PageRecorder recorder;
  std::unique_ptr<PageServer> server;

 private:
  std::string _cookie;
};

/// A page's WebSocket, written out by hand.
class RawWebSocket {
 public:
  explicit RawWebSocket(PageUnderTest& page, const PageUnderTest::Fields& fields = {});

  int status() const { return _status; }
  test::SocketClient& client() { return _client; }
  bool sendText(std::string_view text) { return send(0x81, text); }
  bool send(unsigned char firstByte, std::string_view payload);
  static std::string frame(unsigned char firstByte, std::string_view payload);

  struct Frame {
    unsigned char firstByte = 0;
    std::string payload;
  };
  /// The next frame; nothing when the connection ends or none comes.
  std::optional<Frame> receive();
  bool endsSoon();

 private:
  std::optional<Frame> frameInBuffer();

  test::SocketClient _client;
  std::string _buffer;
  int _status = 0;
};

}  // namespace quaverly::page
