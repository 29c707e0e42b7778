#include "Host/Page/PageRoutes.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace quaverly::page {

struct PageReply::State {
  explicit State(std::function<void(PageAnswer)> taker) : deliver(std::move(taker)) {}
  ~State() { answer(PageAnswer::message(500, "No answer", "This could not be done. Try it again.")); }

  void answer(PageAnswer answer) {
    if (!isAnswered.exchange(true)) deliver(std::move(answer));
  }

  std::function<void(PageAnswer)> deliver;
  std::atomic<bool> isAnswered{false};
};

PageReply::PageReply(std::function<void(PageAnswer)> deliver)
    : _state(std::make_shared<State>(std::move(deliver))) {}

void PageReply::operator()(PageAnswer answer) const {
  _state->answer(std::move(answer));
}

void PageRoutes::add(PageMethod method, std::string prefix, Handler handler) {
  remove(method, prefix);
  _routes.push_back({method, std::move(prefix), std::move(handler)});
}

void PageRoutes::remove(PageMethod method, std::string_view prefix) {
  std::erase_if(_routes,
                [&](const Route& route) { return route.method == method && route.prefix == prefix; });
}

bool PageRoutes::knows(std::string_view path) const {
  return takes(PageMethod::get, path) || takes(PageMethod::post, path);
}

void PageRoutes::ask(PageRequest request, const PageReply& reply) const {
  const Route* route = find(request.method, request.path);
  if (!route) return reply(PageAnswer::notFound());
  request.rest = request.path.substr(route->prefix.size());
  const auto handler = route->handler;  // it may take its own route away
  handler(request, reply);
}

const PageRoutes::Route* PageRoutes::find(PageMethod method, std::string_view path) const {
  const Route* found = nullptr;
  for (const auto& route : _routes) {
    if (route.method != method || !path.starts_with(route.prefix)) continue;
    if (!found || route.prefix.size() > found->prefix.size()) found = &route;
  }
  return found;
}

}  // namespace quaverly::page
