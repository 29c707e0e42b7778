#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/NSData.h"
#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NSURL.h"

namespace quaverly {

/// Orders header names whatever their case.
struct HTTPHeaderNameLess {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};

/// Header fields by name; a field that came several times has its values joined with ", ".
using HTTPHeaderFields = std::map<std::string, std::string, HTTPHeaderNameLess>;

inline constexpr const char* kCFHTTPVersion1_1 = "HTTP/1.1";

/// An HTTP message: a request that is read, or a response that is written. Not for several threads at once.
class CFHTTPMessage : public NSObject {
 public:
  CFHTTPMessage();

  struct Parts;  // what the operations below work on
  Parts& parts() const { return *_parts; }

 protected:
  ~CFHTTPMessage() override;

 private:
  std::unique_ptr<Parts> _parts;
};

// Requests.

/// A request of which nothing is known yet.
[[nodiscard]] Ref<CFHTTPMessage> CFHTTPMessageCreateEmpty();

/// Takes the next bytes of the request, cut anywhere. False when the head is malformed or longer than 64 KiB,
/// or asks for a host that is not this machine; nothing makes such a message well again. Bytes that follow
/// the head are kept and not looked at.
[[nodiscard]] bool CFHTTPMessageAppendBytes(const Ref<CFHTTPMessage>& message, std::string_view bytes);

/// Whether the empty line that ends the head has been read.
bool CFHTTPMessageIsHeaderComplete(const Ref<CFHTTPMessage>& message);

// Of a request whose head is complete; nothing before.

std::optional<std::string> CFHTTPMessageCopyRequestMethod(const Ref<CFHTTPMessage>& message);

/// "http://", the host and the target; the target alone when it is a URL already or no host is named. Nothing
/// when that is no URL.
std::optional<NSURL> CFHTTPMessageCopyRequestURL(const Ref<CFHTTPMessage>& message);

HTTPHeaderFields CFHTTPMessageCopyAllHeaderFields(const Ref<CFHTTPMessage>& message);

/// Without the white space around it; `name` in any case.
std::optional<std::string> CFHTTPMessageCopyHeaderFieldValue(const Ref<CFHTTPMessage>& message,
                                                             std::string_view name);

// Responses.

/// Without a description the standard one of the status code is used.
[[nodiscard]] Ref<CFHTTPMessage> CFHTTPMessageCreateResponse(int statusCode,
                                                             std::optional<std::string> statusDescription,
                                                             std::string_view version);

/// Adds a field, or gives it another value.
void CFHTTPMessageSetHeaderFieldValue(const Ref<CFHTTPMessage>& message, std::string_view name,
                                      std::string value);
void CFHTTPMessageSetBody(const Ref<CFHTTPMessage>& message, std::string body);

/// The status line, the fields in the order in which they were set, an empty line, the body; nothing is
/// added.
NSData CFHTTPMessageCopySerializedMessage(const Ref<CFHTTPMessage>& message);

}  // namespace quaverly
