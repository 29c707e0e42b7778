#include "Host/Page/PageWords.h"

#include "Host/Page/StaticFiles.h"

namespace quaverly::page {

void addPageWords(PageRoutes& routes, const std::string& resourceFolder, const std::string& language) {
  const std::string name = "translations/" + language + ".js";
  const StaticFiles files(resourceFolder);
  if (!files.has(name)) return;
  routes.add(PageMethod::get, "/translation.js",
             [files, name](const PageRequest& request, const PageReply& reply) {
               auto answer = request.rest.empty() ? files.file(name) : std::nullopt;
               reply(answer ? *std::move(answer) : PageAnswer::notFound());
             });
}

}  // namespace quaverly::page
