#pragma once

#include <string>

#include "Host/Page/PageRoutes.h"

namespace quaverly::page {

/// Lets the page speak the user's language: "/translation.js" becomes that language's file in the folder
/// "translations" of the page's resources. Without such a file the page stays English.
void addPageWords(PageRoutes& routes, const std::string& resourceFolder, const std::string& language);

}  // namespace quaverly::page
