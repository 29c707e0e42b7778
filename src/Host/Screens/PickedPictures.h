#pragma once

#include "Host/Page/PageRoutes.h"

namespace quaverly::screens {

/// Takes the pictures that people pick on a page: `POST /picked?node=N` with a PNG or JPEG file as its body
/// gives it to the picker of that number. Decoded on a worker; what is no picture is said and changes
/// nothing. Main thread.
class PickedPictures {
 public:
  /// The routes must outlive it; it takes its own away when it goes.
  explicit PickedPictures(page::PageRoutes& routes);
  ~PickedPictures();
  PickedPictures(const PickedPictures&) = delete;
  PickedPictures& operator=(const PickedPictures&) = delete;

 private:
  page::PageRoutes& _routes;
};

}  // namespace quaverly::screens
