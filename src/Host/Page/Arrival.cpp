#include "Host/Page/Arrival.h"

namespace quaverly::page {

PageAnswer refusal() {
  return PageAnswer::message(403, "This address is not for everyone",
                             "Only the browser that Quaverly was opened in may see its page. Run "
                             "<code>quaverly serve</code> and open the address that it prints, as a whole. "
                             "If it runs already, run it once more: it then says where it is.");
}

PageAnswer tooManyPages() {
  return PageAnswer::message(503, "Too many pages", "Close another page of Quaverly first.");
}

// By itself, so that the token leaves the address bar. A redirect would not do: a browser that comes from
// elsewhere would still count as coming from there, and leave the cookie out.
PageAnswer entrance(const PageGuard& guard) {
  auto answer = PageAnswer::message(200, "Quaverly", "<a href=\"/\">Go on</a>");
  answer.moreFields.emplace_back("Refresh", "0; url=/");
  answer.moreFields.emplace_back("Set-Cookie", guard.cookieField());
  return answer;
}

}  // namespace quaverly::page
