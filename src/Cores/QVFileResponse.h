#pragma once

#include <optional>
#include <string>

#include "Externals/HTTPServer/HTTPResponseHandler.h"

namespace quaverly {

/// Serves the file that is being imported, whole, from where it lies. Its path is the request URL's query,
/// percent-encoded:
///
///     GET /qvtolmarinimporter.mp3?/var/mobile/Media/a%20b.mp3 HTTP/1.1
class QVFileResponse : public HTTPResponseHandler {
 public:
  using Superclass = HTTPResponseHandler;

  /// Registers the class, once more each time.
  static void load();

  /// Notes the query's path, whatever the answer: whoever asked last decides which file is served. The answer
  /// depends on the URL's path alone.
  static bool canHandleRequestMethodUrlHeaderFields(const Ref<CFHTTPMessage>& request,
                                                    const std::string& method,
                                                    const std::optional<NSURL>& url,
                                                    const HTTPHeaderFields& headerFields);

  /// The device path of the file to serve; nothing when the last URL had no query or a broken one.
  static std::optional<std::string> pathForFile();

  /// Answers with status 200 and the file; with its first byte alone when any range is asked for, and without
  /// content when the file cannot be read or the method is not GET.
  void startResponse() override;

 private:
  NSData dataToSend() const;
};

}  // namespace quaverly
