#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/CFNetwork/CFHTTPMessage.h"
#include "Platform/Foundation/NSFileHandle.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NSURL.h"

namespace quaverly {

class HTTPResponseHandler;
class HTTPServer;

/// A handler class as the registry knows it.
class HTTPResponseHandlerClass {
 public:
  explicit HTTPResponseHandlerClass(std::string_view name) : _name(name) {}
  virtual ~HTTPResponseHandlerClass() = default;

  std::string_view name() const { return _name; }
  virtual unsigned priority() const = 0;
  virtual bool canHandleRequestMethodUrlHeaderFields(const Ref<CFHTTPMessage>& request,
                                                     const std::string& method,
                                                     const std::optional<NSURL>& url,
                                                     const HTTPHeaderFields& headerFields) const = 0;
  virtual Ref<HTTPResponseHandler> alloc() const = 0;

 private:
  std::string_view _name;
};

/// A handler class by its C++ type: what `T` does not define as a class operation is its superclass's.
template <class T>
class HTTPResponseHandlerClassOf : public HTTPResponseHandlerClass {
 public:
  using HTTPResponseHandlerClass::HTTPResponseHandlerClass;

  unsigned priority() const override { return T::priority(); }
  bool canHandleRequestMethodUrlHeaderFields(const Ref<CFHTTPMessage>& request, const std::string& method,
                                             const std::optional<NSURL>& url,
                                             const HTTPHeaderFields& headerFields) const override {
    return T::canHandleRequestMethodUrlHeaderFields(request, method, url, headerFields);
  }
  Ref<HTTPResponseHandler> alloc() const override { return make<T>(); }
};

/// The registry of response handler classes, and the base of every handler. As a handler it answers any
/// request with status 501. Main thread only.
///
/// A handler is made when its request's head is complete, and lives in the server's set of handlers until it
/// tells the server that it is done.
class HTTPResponseHandler : public NSObject {
 public:
  HTTPResponseHandler();

  /// Classes of higher priority are asked first.
  static unsigned priority() { return 0; }

  /// Registers the class; runs once when it is loaded. Every subclass has its own.
  static void load();

  /// Puts a class in front of those of the same or lower priority. A class may be registered several times.
  static void registerHandler(const HTTPResponseHandlerClass& handlerClass);
  static const std::vector<const HTTPResponseHandlerClass*>& registeredHandlers();

  /// Whether a handler of this class answers such a request. May have side effects.
  static bool canHandleRequestMethodUrlHeaderFields(const Ref<CFHTTPMessage>& request,
                                                    const std::string& method,
                                                    const std::optional<NSURL>& url,
                                                    const HTTPHeaderFields& headerFields);

  /// The first registered class that can handle the request; null when none can.
  static const HTTPResponseHandlerClass* handlerClassForRequestMethodUrlHeaderFields(
      const Ref<CFHTTPMessage>& request, const std::string& method, const std::optional<NSURL>& url,
      const HTTPHeaderFields& headerFields);

  /// A new handler for a request whose head is complete; null when no class can handle it.
  static Ref<HTTPResponseHandler> handlerForRequestFileHandleServer(const Ref<CFHTTPMessage>& request,
                                                                    const Ref<NSFileHandle>& fileHandle,
                                                                    const Ref<HTTPServer>& server);

  HTTPResponseHandler* initWithRequestMethodUrlHeaderFieldsFileHandleServer(
      Ref<CFHTTPMessage> request, std::string method, std::optional<NSURL> url, HTTPHeaderFields headerFields,
      Ref<NSFileHandle> fileHandle, Ref<HTTPServer> server);

  /// Writes the whole response, and then tells the server to close this handler.
  virtual void startResponse();

  /// Closes the connection and lets go of the server; the server calls it.
  virtual void endResponse();

  /// What a client sends after its head is read and thrown away; a client that hangs up ends the handler.
  void receiveIncomingDataNotification(const NSNotification& notification);

 protected:
  ~HTTPResponseHandler() override;

  /// Writes a response, then, when that succeeded, its data, and has the server close this handler in any
  /// case: nobody is left to tell of a client that hung up.
  void writeAndClose(const Ref<CFHTTPMessage>& response, const NSData& data);

  Ref<CFHTTPMessage> _request;
  std::string _requestMethod;
  HTTPHeaderFields _headerFields;
  Ref<NSFileHandle> _fileHandle;
  Ref<HTTPServer> _server;
  std::optional<NSURL> _url;
};

}  // namespace quaverly
