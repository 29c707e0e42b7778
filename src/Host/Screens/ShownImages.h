#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>

#include "Host/Page/PageRoutes.h"
#include "Platform/UIKit/UIImage.h"

namespace quaverly::screens {

/// The pictures that the screens show, where a page fetches them: `/image/N`. Pictures that are not PNG or
/// JPEG files already are made into one on a worker. Main thread.
class ShownImages {
 public:
  /// How many pictures that are no longer shown can still be fetched, by a page that is late.
  static constexpr size_t mostForgotten = 16;

  /// The routes must outlive it; it takes its own away when it goes.
  explicit ShownImages(page::PageRoutes& routes);
  ~ShownImages();
  ShownImages(const ShownImages&) = delete;
  ShownImages& operator=(const ShownImages&) = delete;

  /// Where the picture is fetched; the same for as long as it is shown.
  std::string pathOf(const Ref<UIImage>& image);
  /// What was not asked for since the last call is no longer shown.
  void forgetUnshown();

 private:
  struct Entry {
    Ref<UIImage> image;
    uint64_t number = 0;
    uint64_t round = 0;  // when it was last shown
  };

  void answer(const page::PageRequest& request, const page::PageReply& reply) const;

  page::PageRoutes& _routes;
  std::map<const UIImage*, Entry> _entries;
  uint64_t _lastNumber = 0;
  uint64_t _round = 1;
};

}  // namespace quaverly::screens
