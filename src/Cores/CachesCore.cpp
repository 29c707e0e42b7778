#include "Cores/CachesCore.h"

#include "Platform/Foundation/NSFileManager.h"

namespace quaverly {
namespace {

constexpr std::string_view imagesFolder = "/Library/PreferenceBundles/QuaverlySettings.bundle/images/";
constexpr size_t mostOperations = 3;

/// A store that can be replaced while others use it.
template <class Store>
class Replaceable {
 public:
  std::shared_ptr<Store> get() const {
    std::lock_guard lock(_mutex);
    return _store;
  }
  void replace() {
    auto store = std::make_shared<Store>();
    std::lock_guard lock(_mutex);
    _store.swap(store);
  }

 private:
  mutable std::mutex _mutex;
  std::shared_ptr<Store> _store = std::make_shared<Store>();
};

struct Caches {
  Replaceable<CachesCore::Images> images;
  Replaceable<CachesCore::Values> values;
  Ref<NSOperationQueue> queue = make<NSOperationQueue>();  // ends before the stores that its work uses

  Caches() { queue->setMaxConcurrentOperationCount(mostOperations); }

  static Caches& shared() {
    static Caches caches;
    return caches;
  }
};

template <class Store>
void deleteKeysWith(std::string_view string, Store& store) {
  if (string.empty()) return;
  for (const auto& key : store.allKeys())
    if (key.find(string) != std::string::npos) store.removeObjectForKey(key);
}

}  // namespace

std::shared_ptr<CachesCore::Images> CachesCore::CachedImages() {
  return Caches::shared().images.get();
}

std::shared_ptr<CachesCore::Values> CachesCore::CachedValues() {
  return Caches::shared().values.get();
}

NSOperationQueue& CachesCore::OperationsQueue() {
  return *Caches::shared().queue;
}

void CachesCore::ResetCaches() {
  Caches::shared().images.replace();
  Caches::shared().values.replace();
}

Ref<UIImage> CachesCore::cachedImageWithContentsOfPath(std::string_view path) {
  const auto images = CachedImages();
  if (auto image = images->objectForKey(path)) return image;
  if (auto image = UIImage::imageWithContentsOfFile(path)) images->setObjectForKey(std::move(image), path);
  return images->objectForKey(path);
}

Ref<UIImage> CachesCore::cachedImageWithContentsOfFileName(std::string_view name) {
  const auto images = CachedImages();
  if (auto image = images->objectForKey(name)) return image;
  // The largest that there is looks well on every screen.
  for (const std::string_view ending : {"@3x.png", "@2x.png", ".png"}) {
    const auto path = std::string(imagesFolder).append(name).append(ending);
    if (!NSFileManager::defaultManager().fileExistsAtPath(path)) continue;
    if (auto image = UIImage::imageWithContentsOfFile(path)) images->setObjectForKey(std::move(image), name);
    break;
  }
  return images->objectForKey(name);
}

void CachesCore::deleteValuesWithRangeOfString(std::string_view string) {
  deleteKeysWith(string, *CachedImages());
  deleteKeysWith(string, *CachedValues());
}

}  // namespace quaverly
