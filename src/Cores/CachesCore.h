#pragma once

#include <any>
#include <memory>
#include <string>
#include <string_view>

#include "Cores/CachesStore.h"
#include "Platform/Foundation/NSOperationQueue.h"
#include "Platform/UIKit/UIImageView.h"

namespace quaverly {

/// The pictures that the screens share, by name, path or URL, and the work of loading and blurring them. Made
/// on first use and kept for the life of the process; nothing is dropped by size or age. What cannot be had
/// is no picture and is stored nowhere, so that the next call looks again.
class CachesCore {
 public:
  CachesCore() = delete;

  using Images = CachesStore<Ref<UIImage>>;
  using Values = CachesStore<std::any>;

  // The stores and the queue, which runs three operations at a time. Any thread.
  static std::shared_ptr<Images> CachedImages();
  static std::shared_ptr<Values> CachedValues();
  static NSOperationQueue& OperationsQueue();

  /// Puts new, empty stores in the place of both; whoever holds an old one keeps what is in it. Any thread.
  static void ResetCaches();

  /// The picture of the file at a device path, by that path. Any thread.
  static Ref<UIImage> cachedImageWithContentsOfPath(std::string_view path);

  /// The settings bundle's icon of a bare name, by that name: its largest form whatever the screen. Any
  /// thread.
  static Ref<UIImage> cachedImageWithContentsOfFileName(std::string_view name);

  // Shows the picture of a URL, and its blurred copy: at once when the store has it, else later, with a
  // spinner in the meantime; a picture that cannot be had clears the view. The view is kept until then, and
  // let go on the main thread. Main thread only.
  static void setImageViewWithContentOfUrl(const Ref<UIImageView>& imageView, std::string_view url);
  static void setImageViewWithContentOfUrlWithBlur(const Ref<UIImageView>& imageView, std::string_view url,
                                                   int radius);

  /// A blurred copy without the border that the blur makes dark: as large as the picture, less a fifteenth of
  /// what the blur grew it to, with a point more in width. Null when there are no pixels, or none are left.
  /// Any thread but the main one.
  static Ref<UIImage> blurredImageWithBlur(const Ref<UIImage>& image, int radius);

  /// Removes every entry of both stores whose key contains the text, as it is written; an empty one is
  /// contained in none. Any thread.
  static void deleteValuesWithRangeOfString(std::string_view string);
};

}  // namespace quaverly
