#include "Host/Page/PageGuard.h"

#include <algorithm>

#include "Host/Page/PageSecrets.h"

namespace quaverly::page {
namespace {

constexpr uint16_t portWithoutMention = 80;  // browsers leave it out
constexpr std::string_view entrance = "/?token=";

std::string hostOf(uint16_t port) {
  return port == portWithoutMention ? "127.0.0.1" : "127.0.0.1:" + std::to_string(port);
}

bool isFromElsewhere(const RequestFacts& request) {
  const auto& site = request.fetchSite;
  return !site.empty() && site != "same-origin" && site != "none";
}

bool isTopLevelNavigation(const RequestFacts& request) {
  return request.fetchMode == "navigate" && request.fetchDestination == "document";
}

bool onlyReads(const RequestFacts& request) {
  return (request.method == "GET" || request.method == "HEAD") && !request.wantsWebSocket;
}

}  // namespace

PageGuard::PageGuard(uint16_t port)
    : _host(hostOf(port)),
      _cookieName("quaverly-" + std::to_string(port)),
      _token(makeSecret()),
      _cookie(makeSecret()) {}

std::string PageGuard::cookieField() const {
  return _cookieName + "=" + _cookie + "; Path=/; HttpOnly; SameSite=Strict";
}

Admission PageGuard::judge(const RequestFacts& request) const {
  if (request.host != _host || !isOwnOrigin(request)) return Admission::refused;
  if (request.target.starts_with(entrance)) {
    const bool mayCome = !isFromElsewhere(request) || isTopLevelNavigation(request);
    return mayCome && request.method == "GET" && bringsToken(request) ? Admission::enters
                                                                      : Admission::refused;
  }
  if (isFromElsewhere(request) || !bringsCookie(request.cookie)) return Admission::refused;
  return Admission::admitted;
}

// Only a plain reading request may leave its origin out, as browsers do.
bool PageGuard::isOwnOrigin(const RequestFacts& request) const {
  return request.origin ? *request.origin == origin() : onlyReads(request);
}

bool PageGuard::bringsToken(const RequestFacts& request) const {
  return !request.wantsWebSocket && isSameSecret(request.target.substr(entrance.size()), _token);
}

bool PageGuard::bringsCookie(std::string_view cookies) const {
  const std::string start = _cookieName + "=";
  while (!cookies.empty()) {
    const size_t end = cookies.find(';');
    std::string_view cookie = cookies.substr(0, end);
    cookies.remove_prefix(end == std::string_view::npos ? cookies.size() : end + 1);
    cookie.remove_prefix(std::min(cookie.find_first_not_of(' '), cookie.size()));
    if (cookie.starts_with(start) && isSameSecret(cookie.substr(start.size()), _cookie)) return true;
  }
  return false;
}

}  // namespace quaverly::page
