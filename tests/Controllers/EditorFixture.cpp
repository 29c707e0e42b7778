#include "Controllers/EditorFixture.h"

#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::test {
namespace {

std::string shown(const SSDownloadMetadata::Value& value) {
  struct Show {
    std::string operator()(std::monostate) const { return "nothing"; }
    std::string operator()(bool flag) const { return flag ? "YES" : "NO"; }
    std::string operator()(int32_t number) const { return std::to_string(number); }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(const NSURL& url) const { return url.absoluteString(); }
    std::string operator()(Clock::Date date) const {
      return "@" + std::to_string(date.time_since_epoch() / std::chrono::seconds(1));
    }
  };
  return std::visit(Show{}, value);
}

}  // namespace

KeptDownloads::KeptDownloads() {
  SSDownloadManager::registerService(this);
}

KeptDownloads::~KeptDownloads() {
  for (const auto& download : std::exchange(_downloads, {})) download->complete();
  SSDownloadManager::registerService(nullptr);
}

void KeptDownloads::addDownloads(const std::vector<Ref<SSDownload>>& downloads) {
  _downloads.insert(_downloads.end(), downloads.begin(), downloads.end());
}

std::string KeptDownloads::last(std::string_view name) const {
  std::string found = "nothing";
  for (const auto& [key, value] : _downloads.back()->metadata()->assignments()) {
    if (key == name) found = shown(value);
  }
  return found;
}

std::vector<std::string> KeptDownloads::lines(size_t index) const {
  std::vector<std::string> lines;
  for (const auto& [key, value] : _downloads.at(index)->metadata()->assignments())
    lines.push_back(std::string(key) + " " + shown(value));
  return lines;
}

Ref<UIImage> square(uint8_t level) {
  constexpr uint32_t side = 64;
  const size_t size = size_t{side} * side * CGImage::bytesPerPixel;
  auto pixels = std::make_unique<uint8_t[]>(size);
  for (size_t i = 0; i < size; ++i) pixels[i] = i % 4 == 3 ? 255 : level;
  return UIImage::imageWithCGImage(make<CGImage>(side, side, std::move(pixels)));
}

ScreenTest::ScreenTest() {
  browser->init();
  host = make<UINavigationController>(browser);
  window->makeKeyAndVisible();
}

ScreenTest::~ScreenTest() {
  settle();
  UIApplication::sharedApplication().screenChanged({375, 667}, UIInterfaceOrientation::Portrait);
  UIApplication::sharedApplication().setKeyWindow(nullptr);
}

void ScreenTest::settle() {
  if (!window->rootViewController()) window->setRootViewController(host);
  for (int round = 0; round < 3; ++round) {
    UIApplication::sharedApplication().layoutIfNeeded();
    device.clock().advance(std::chrono::seconds(1));
    while (NSRunLoop::mainRunLoop().runOnce(std::chrono::milliseconds(20))) continue;
  }
  UIApplication::sharedApplication().layoutIfNeeded();
}

bool ScreenTest::waitFor(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition() && std::chrono::steady_clock::now() < deadline)
    NSRunLoop::mainRunLoop().runOnce(std::chrono::milliseconds(50));
  return condition();
}

void ScreenTest::tapRow(const std::string& name) {
  const auto& items = browser->fileItems();
  for (size_t row = 0; row < items.size(); ++row) {
    if (NSStringLastPathComponent(*items[row].path()) == name) return browser->tableView()->tapRow({0, row});
  }
  ADD_FAILURE() << name << " is not on the screen";
}

}  // namespace quaverly::test
