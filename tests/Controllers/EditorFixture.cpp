#include "Controllers/EditorFixture.h"

#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/Foundation/NSString.h"

namespace quaverly::test {

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
