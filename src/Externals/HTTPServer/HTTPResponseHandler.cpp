#include "Externals/HTTPServer/HTTPResponseHandler.h"

#include <algorithm>
#include <utility>

#include "Externals/HTTPServer/HTTPServer.h"
#include "Platform/Foundation/ClassLoad.h"

namespace quaverly {
namespace {

const ClassLoadHook<HTTPResponseHandler> loadHook;

std::vector<const HTTPResponseHandlerClass*>& handlerClasses() {
  static std::vector<const HTTPResponseHandlerClass*> classes;
  return classes;
}

}  // namespace

HTTPResponseHandler::HTTPResponseHandler() = default;

void HTTPResponseHandler::load() {
  static const HTTPResponseHandlerClassOf<HTTPResponseHandler> classObject("HTTPResponseHandler");
  registerHandler(classObject);
}

void HTTPResponseHandler::registerHandler(const HTTPResponseHandlerClass& handlerClass) {
  auto& classes = handlerClasses();
  const auto place = std::ranges::find_if(
      classes, [&](const auto* registered) { return handlerClass.priority() >= registered->priority(); });
  classes.insert(place, &handlerClass);
}

const std::vector<const HTTPResponseHandlerClass*>& HTTPResponseHandler::registeredHandlers() {
  return handlerClasses();
}

bool HTTPResponseHandler::canHandleRequestMethodUrlHeaderFields(const Ref<CFHTTPMessage>&, const std::string&,
                                                                const std::optional<NSURL>&,
                                                                const HTTPHeaderFields&) {
  return true;
}

const HTTPResponseHandlerClass* HTTPResponseHandler::handlerClassForRequestMethodUrlHeaderFields(
    const Ref<CFHTTPMessage>& request, const std::string& method, const std::optional<NSURL>& url,
    const HTTPHeaderFields& headerFields) {
  const auto& classes = handlerClasses();
  const auto found = std::ranges::find_if(classes, [&](const auto* registered) {
    return registered->canHandleRequestMethodUrlHeaderFields(request, method, url, headerFields);
  });
  return found == classes.end() ? nullptr : *found;
}

Ref<HTTPResponseHandler> HTTPResponseHandler::handlerForRequestFileHandleServer(
    const Ref<CFHTTPMessage>& request, const Ref<NSFileHandle>& fileHandle, const Ref<HTTPServer>& server) {
  auto headerFields = CFHTTPMessageCopyAllHeaderFields(request);
  auto url = CFHTTPMessageCopyRequestURL(request);
  auto method = CFHTTPMessageCopyRequestMethod(request).value_or("");
  const auto* handlerClass = handlerClassForRequestMethodUrlHeaderFields(request, method, url, headerFields);
  if (!handlerClass) return nullptr;
  auto handler = handlerClass->alloc();
  handler->initWithRequestMethodUrlHeaderFieldsFileHandleServer(request, std::move(method), std::move(url),
                                                                std::move(headerFields), fileHandle, server);
  return handler;
}

HTTPResponseHandler* HTTPResponseHandler::initWithRequestMethodUrlHeaderFieldsFileHandleServer(
    Ref<CFHTTPMessage> request, std::string method, std::optional<NSURL> url, HTTPHeaderFields headerFields,
    Ref<NSFileHandle> fileHandle, Ref<HTTPServer> server) {
  _request = std::move(request);
  _requestMethod = std::move(method);
  _url = std::move(url);
  _headerFields = std::move(headerFields);
  _fileHandle = std::move(fileHandle);
  _server = std::move(server);
  NSNotificationCenter::defaultCenter().addObserver(this,
                                                    &HTTPResponseHandler::receiveIncomingDataNotification,
                                                    NSFileHandleDataAvailableNotification, _fileHandle.get());
  _fileHandle->waitForDataInBackgroundAndNotify();
  return this;
}

void HTTPResponseHandler::startResponse() {
  const auto response = CFHTTPMessageCreateResponse(501, std::nullopt, kCFHTTPVersion1_1);
  CFHTTPMessageSetHeaderFieldValue(response, "Content-Type", "text/html");
  CFHTTPMessageSetHeaderFieldValue(response, "Connection", "close");
  CFHTTPMessageSetBody(response,
                       "<html><head><title>501 - Not Implemented</title></head><body>"
                       "<h1>501 - Not Implemented</h1><p>No handler exists to handle " +
                           (_url ? _url->absoluteString() : "(null)") + ".</p></body></html>");
  writeAndClose(response, NSData());
}

void HTTPResponseHandler::writeAndClose(const Ref<CFHTTPMessage>& response, const NSData& data) {
  const bool isWritten = _fileHandle->writeData(CFHTTPMessageCopySerializedMessage(response));
  if (isWritten) static_cast<void>(_fileHandle->writeData(data));
  _server->closeHandler(this);
}

void HTTPResponseHandler::endResponse() {
  if (_fileHandle) {
    NSNotificationCenter::defaultCenter().removeObserver(this, NSFileHandleDataAvailableNotification,
                                                         _fileHandle.get());
    _fileHandle->closeFile();
    _fileHandle = nullptr;
  }
  _server = nullptr;
}

void HTTPResponseHandler::receiveIncomingDataNotification(const NSNotification& notification) {
  const Ref<NSFileHandle> fileHandle(static_cast<NSFileHandle*>(notification.object()));
  if (fileHandle->availableData().length() == 0 && _server) _server->closeHandler(this);
  fileHandle->waitForDataInBackgroundAndNotify();
}

HTTPResponseHandler::~HTTPResponseHandler() {
  if (_server) endResponse();
}

}  // namespace quaverly
