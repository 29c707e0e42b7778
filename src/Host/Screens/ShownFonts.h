#pragma once

#include "Host/Page/PageRoutes.h"

namespace quaverly::screens {

/// The fonts that the device measures text with, for the page to draw it with: `/fonts/NAME`. Main thread.
class ShownFonts {
 public:
  /// The routes must outlive it; it takes its own away when it goes.
  explicit ShownFonts(page::PageRoutes& routes);
  ~ShownFonts();
  ShownFonts(const ShownFonts&) = delete;
  ShownFonts& operator=(const ShownFonts&) = delete;

 private:
  page::PageRoutes& _routes;
};

}  // namespace quaverly::screens
