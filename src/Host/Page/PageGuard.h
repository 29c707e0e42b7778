#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quaverly::page {

/// What of a request decides whether it is answered. A field that was sent twice counts as a foreign one.
struct RequestFacts {
  std::string method;
  std::string target;
  std::string host;
  std::optional<std::string> origin;
  std::string fetchSite;  ///< Sec-Fetch-Site and its sisters; "" where a browser sends none
  std::string fetchMode;
  std::string fetchDestination;
  std::string cookie;
  bool wantsWebSocket = false;
};

enum class Admission {
  refused,   ///< gets nothing but the page that says what to do
  enters,    ///< brings the token, and gets the cookie
  admitted,  ///< has the cookie
};

/// Tells the browser that Quaverly opened from all others, and from other pages in it.
///
/// A request must name this server exactly as its Host, must have been caused by this server's own pages or
/// by the user, and must bring the cookie, which the token in the printed address is exchanged for. The one
/// exception lets the address be opened from elsewhere: a top-level navigation with the token may be
/// cross-site. Both secrets are made anew with each guard.
class PageGuard {
 public:
  explicit PageGuard(uint16_t port);

  /// The address to open, with the token.
  std::string address() const { return origin() + "/?token=" + _token; }
  /// "http://127.0.0.1:8181".
  std::string origin() const { return "http://" + _host; }
  /// "127.0.0.1:8181".
  const std::string& host() const { return _host; }
  /// The value of the Set-Cookie field.
  std::string cookieField() const;

  Admission judge(const RequestFacts& request) const;

 private:
  bool isOwnOrigin(const RequestFacts& request) const;
  bool bringsToken(const RequestFacts& request) const;
  bool bringsCookie(std::string_view cookies) const;

  std::string _host;
  std::string _cookieName;
  std::string _token;
  std::string _cookie;
};

}  // namespace quaverly::page
