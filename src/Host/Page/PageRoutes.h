#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Host/Page/PageAnswer.h"

namespace quaverly::page {

enum class PageMethod {
  get,   ///< HEAD is asked as GET, and the server leaves the body out
  post,  ///< with a body of at most `PageRoutes::maximumBody` bytes
};

/// What a page asks for.
struct PageRequest {
  PageMethod method = PageMethod::get;
  std::string path;         ///< percent-decoded UTF-8
  std::string rest;         ///< what follows the route's prefix in the path
  std::string query;        ///< what follows the first "?", undecoded; "" without one
  std::string ifNoneMatch;  ///< the browser's tags, for `namesEntityTag`; the server looks at them as well
  std::string body;
};

/// Takes the answer to one request, once, on any thread; what comes later is dropped. One that is never used
/// answers with an error when its last copy goes. Cheap to copy.
class PageReply {
 public:
  /// `deliver` is called at most once, on the thread that answers.
  explicit PageReply(std::function<void(PageAnswer)> deliver);
  void operator()(PageAnswer answer) const;

 private:
  struct State;
  std::shared_ptr<State> _state;
};

/// Who answers what, by the beginning of the path. Main thread.
class PageRoutes {
 public:
  static constexpr size_t maximumBody = size_t{64} * 1024 * 1024;

  /// Called on the main thread; may answer at once, or later from any thread.
  using Handler = std::function<void(const PageRequest& request, const PageReply& reply)>;

  /// Hands requests whose path begins with `prefix` to `handler`. The longest prefix wins; the same one again
  /// takes the earlier one's place.
  void add(PageMethod method, std::string prefix, Handler handler);
  void remove(PageMethod method, std::string_view prefix);

  /// Whether anybody answers this path in any method, and in this one.
  bool knows(std::string_view path) const;
  bool takes(PageMethod method, std::string_view path) const { return find(method, path) != nullptr; }
  /// Only for what somebody takes; sets the request's `rest`.
  void ask(PageRequest request, const PageReply& reply) const;

 private:
  struct Route {
    PageMethod method;
    std::string prefix;
    Handler handler;
  };
  const Route* find(PageMethod method, std::string_view path) const;

  std::vector<Route> _routes;
};

}  // namespace quaverly::page
