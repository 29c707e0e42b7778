#pragma once

#include "Host/Page/PageAnswer.h"
#include "Host/Page/PageGuard.h"

// What those get who are not in yet.
namespace quaverly::page {

/// For who may not come in: says what to do.
PageAnswer refusal();
/// For one page more than there may be.
PageAnswer tooManyPages();

/// For who brought the token: hands the cookie out, and leads on to "/".
PageAnswer entrance(const PageGuard& guard);

}  // namespace quaverly::page
