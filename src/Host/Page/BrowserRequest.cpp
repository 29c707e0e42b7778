#include "Host/Page/BrowserRequest.h"

#include "Platform/CFNetwork/CFHTTPMessage.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::page {
namespace {

bool isSameName(std::string_view one, std::string_view other) {
  constexpr HTTPHeaderNameLess isLess;
  return !isLess(one, other) && !isLess(other, one);
}

PageAnswer methodRefusal() {
  auto answer = PageAnswer::message(405, "Not that way", "This address does not answer such a request.");
  answer.moreFields.emplace_back("Allow", "GET, HEAD, POST");
  return answer;
}

}  // namespace

std::optional<std::string> BrowserRequest::field(std::string_view name) const {
  std::optional<std::string> found;
  for (const auto& [each, value] : fields) {
    if (isSameName(each, name)) found = found ? "?" : value;
  }
  return found;
}

std::string BrowserRequest::text() const {
  std::string text = method + " " + target + " HTTP/1.1\r\n";
  for (const auto& [name, value] : fields) text.append(name).append(": ").append(value).append("\r\n");
  return text + "\r\n";
}

RequestFacts factsOf(const BrowserRequest& request) {
  RequestFacts facts;
  facts.method = request.method;
  facts.target = request.target;
  facts.host = request.field("Host").value_or("");
  facts.origin = request.field("Origin");
  facts.fetchSite = request.field("Sec-Fetch-Site").value_or("");
  facts.fetchMode = request.field("Sec-Fetch-Mode").value_or("");
  facts.fetchDestination = request.field("Sec-Fetch-Dest").value_or("");
  facts.cookie = request.field("Cookie").value_or("");
  facts.wantsWebSocket = request.wantsWebSocket();
  return facts;
}

std::variant<PageRequest, PageAnswer> routedRequest(const BrowserRequest& request, const PageRoutes& routes) {
  const size_t mark = request.target.find('?');
  const auto path = NSStringByRemovingPercentEncoding(request.target.substr(0, mark));
  if (!path || path->find('\0') != std::string::npos || !routes.knows(*path)) return PageAnswer::notFound();
  const bool posts = request.method == "POST";
  PageRequest routed;
  routed.method = posts ? PageMethod::post : PageMethod::get;
  routed.path = *path;
  if (mark != std::string::npos) routed.query = request.target.substr(mark + 1);
  routed.ifNoneMatch = request.field("If-None-Match").value_or("");
  const bool isUsual = posts || request.method == "HEAD" || request.method == "GET";
  if (!isUsual || !routes.takes(routed.method, routed.path)) return methodRefusal();
  return routed;
}

}  // namespace quaverly::page
