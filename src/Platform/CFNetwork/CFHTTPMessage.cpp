#include "Platform/CFNetwork/CFHTTPMessage.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Platform/CFNetwork/LocalHostGuard.h"
#include "Platform/CFNetwork/RequestReader.h"

namespace quaverly {
namespace {

char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

bool isSameName(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, lowerCase, lowerCase);
}

}  // namespace

struct CFHTTPMessage::Parts {
  RequestReader request;

  std::string statusLine;
  std::vector<std::pair<std::string, std::string>> responseFields;
  std::string body;
};

bool HTTPHeaderNameLess::operator()(std::string_view a, std::string_view b) const {
  return std::ranges::lexicographical_compare(a, b, {}, lowerCase, lowerCase);
}

CFHTTPMessage::CFHTTPMessage() : _parts(std::make_unique<Parts>()) {}
CFHTTPMessage::~CFHTTPMessage() = default;

Ref<CFHTTPMessage> CFHTTPMessageCreateEmpty() {
  return make<CFHTTPMessage>();
}

bool CFHTTPMessageAppendBytes(const Ref<CFHTTPMessage>& message, std::string_view bytes) {
  auto& request = message->parts().request;
  if (!request.append(bytes)) return false;
  const auto host = CFHTTPMessageCopyHeaderFieldValue(message, "Host");
  return !host || host->empty() || isHostThisMachine(*host);
}

bool CFHTTPMessageIsHeaderComplete(const Ref<CFHTTPMessage>& message) {
  return message->parts().request.head() != nullptr;
}

std::optional<std::string> CFHTTPMessageCopyRequestMethod(const Ref<CFHTTPMessage>& message) {
  const auto* head = message->parts().request.head();
  return head ? std::optional(head->method) : std::nullopt;
}

std::optional<NSURL> CFHTTPMessageCopyRequestURL(const Ref<CFHTTPMessage>& message) {
  const auto* head = message->parts().request.head();
  if (!head) return std::nullopt;
  const auto target = NSURL::URLWithString(head->target);
  const auto host = CFHTTPMessageCopyHeaderFieldValue(message, "Host").value_or("");
  if (host.empty() || !target || target->scheme()) return target;
  return NSURL::URLWithString("http://" + host + head->target);
}

HTTPHeaderFields CFHTTPMessageCopyAllHeaderFields(const Ref<CFHTTPMessage>& message) {
  const auto* head = message->parts().request.head();
  return head ? head->fields : HTTPHeaderFields();
}

std::optional<std::string> CFHTTPMessageCopyHeaderFieldValue(const Ref<CFHTTPMessage>& message,
                                                             std::string_view name) {
  const auto* head = message->parts().request.head();
  if (!head) return std::nullopt;
  const auto found = head->fields.find(name);
  return found == head->fields.end() ? std::nullopt : std::optional(found->second);
}

Ref<CFHTTPMessage> CFHTTPMessageCreateResponse(int statusCode, std::optional<std::string> statusDescription,
                                               std::string_view version) {
  auto message = make<CFHTTPMessage>();
  auto& statusLine = message->parts().statusLine;
  statusLine.append(version).append(" ").append(std::to_string(statusCode)).append(" ");
  statusLine.append(statusDescription ? *statusDescription : standardStatusDescription(statusCode));
  return message;
}

void CFHTTPMessageSetHeaderFieldValue(const Ref<CFHTTPMessage>& message, std::string_view name,
                                      std::string value) {
  auto& fields = message->parts().responseFields;
  const auto found =
      std::ranges::find_if(fields, [&](const auto& field) { return isSameName(field.first, name); });
  if (found != fields.end()) {
    found->second = std::move(value);
  } else {
    fields.emplace_back(name, std::move(value));
  }
}

void CFHTTPMessageSetBody(const Ref<CFHTTPMessage>& message, std::string body) {
  message->parts().body = std::move(body);
}

NSData CFHTTPMessageCopySerializedMessage(const Ref<CFHTTPMessage>& message) {
  const auto& parts = message->parts();
  std::string text = parts.statusLine + "\r\n";
  for (const auto& [name, value] : parts.responseFields)
    text.append(name).append(": ").append(value).append("\r\n");
  return NSData(text.append("\r\n").append(parts.body));
}

}  // namespace quaverly
