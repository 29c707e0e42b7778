#include "Cores/QVFileResponse.h"

#include "Platform/Foundation/ClassLoad.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly {
namespace {

const ClassLoadHook<QVFileResponse> loadHook;

/// One for the whole process, as songs are imported one at a time.
std::optional<std::string> filePath;

}  // namespace

void QVFileResponse::load() {
  static const HTTPResponseHandlerClassOf<QVFileResponse> classObject("QVFileResponse");
  HTTPResponseHandler::registerHandler(classObject);
}

bool QVFileResponse::canHandleRequestMethodUrlHeaderFields(const Ref<CFHTTPMessage>&, const std::string&,
                                                           const std::optional<NSURL>& url,
                                                           const HTTPHeaderFields&) {
  const auto query = url ? url->query() : std::nullopt;
  filePath = query ? NSStringByRemovingPercentEncoding(*query) : std::nullopt;
  return url && url->path() == "/qvtolmarinimporter.mp3";
}

std::optional<std::string> QVFileResponse::pathForFile() {
  return filePath;
}

NSData QVFileResponse::dataToSend() const {
  const auto path = pathForFile();
  const NSData data = path ? NSData::dataWithContentsOfFile(*path).value_or(NSData()) : NSData();
  const auto range = CFHTTPMessageCopyHeaderFieldValue(_request, "Range").value_or("");
  // An empty file has no first byte; it is answered as it is.
  return range.empty() || data.length() == 0 ? data : data.subdataWithRange(0, 1);
}

void QVFileResponse::startResponse() {
  const NSData data = dataToSend();
  const auto response = CFHTTPMessageCreateResponse(200, std::nullopt, kCFHTTPVersion1_1);
  CFHTTPMessageSetHeaderFieldValue(response, "Content-Type", "application/octet-stream");
  CFHTTPMessageSetHeaderFieldValue(response, "Content-Disposition",
                                   "attachment; filename=\"quaverly.mp3\"; filename*=UTF-8'quaverlymp3'");
  CFHTTPMessageSetHeaderFieldValue(response, "Content-Length", std::to_string(data.length()));
  writeAndClose(response, _requestMethod == "GET" ? data : NSData());
}

}  // namespace quaverly
