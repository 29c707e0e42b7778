#include "Cores/CachesCore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>

#include "Platform/CoreImage/CIContext.h"
#include "Platform/CoreImage/CIFilter.h"
#include "Platform/Foundation/NSRunLoop.h"
#include "Platform/UIKit/UIActivityIndicatorView.h"
#include "Support/AudioFiles.h"
#include "Support/SocketClient.h"
#include "Support/TestDevice.h"
#include "Support/TestPeer.h"

namespace quaverly {
namespace {

using test::runLoopUntil;
using test::TestPeer;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

constexpr std::string_view artwork =
    "file://localhost/private/var/mobile/Media/Quaverly/tmp/current_album_image.png";

class Caches : public testing::Test {
 protected:
  /// Pictures of different sizes are different pictures.
  std::string picture(const std::string& size, const std::string& name = "picture.png") {
    return test::contentsOf(test::makePicture(_scratch, name, size));
  }
  void stageArtwork(const std::string& bytes) {
    _device.temporary().write("tmp/current_album_image.png", bytes);
  }
  void writeIcon(const std::string& name, const std::string& bytes) {
    _device.bundle().write("images/" + name, bytes);
  }
  /// Waits until the operations that were added are done, and what they posted.
  void finishOperations() {
    for (int i = 0; i < 3; ++i) {
      const auto reached = std::make_shared<std::atomic<bool>>(false);
      CachesCore::OperationsQueue().addOperationWithBlock([reached] { *reached = true; });
      EXPECT_TRUE(runLoopUntil([&] { return reached->load(); }));
    }
    test::settleLoop();
  }

  static Ref<UIImage> stored(std::string_view key) { return CachesCore::CachedImages()->objectForKey(key); }
  static void store(const Ref<UIImage>& image, std::string_view key) {
    CachesCore::CachedImages()->setObjectForKey(image, key);
  }
  static std::vector<std::string> keys() { return CachesCore::CachedImages()->allKeys(); }
  static uint32_t widthOf(const Ref<UIImage>& image) { return image ? image->pixelSize().width : 0; }
  static bool isWaiting(const Ref<UIImageView>& view) { return !view->subviews().empty(); }

  test::TestDevice _device;
  test::TemporaryFolder _scratch;
  Ref<UIImageView> _view = make<UIImageView>(CGRect{10, 20, 100, 60});
};

class Stores : public Caches {};
class Icons : public Caches {};
class Loading : public Caches {};
class Blurring : public Caches {};
class Deleting : public Caches {};

TEST_F(Stores, AreEmptyAtFirstAndTheSameEachTime) {
  EXPECT_THAT(keys(), ElementsAre());
  EXPECT_THAT(CachesCore::CachedValues()->allKeys(), ElementsAre());
  EXPECT_EQ(CachesCore::CachedImages(), CachesCore::CachedImages());
  EXPECT_EQ(CachesCore::CachedValues(), CachesCore::CachedValues());
  EXPECT_EQ(&CachesCore::OperationsQueue(), &CachesCore::OperationsQueue());
  EXPECT_EQ(CachesCore::OperationsQueue().maxConcurrentOperationCount(), 3U);
}

TEST_F(Stores, KeepTheLastThatWasWritten) {
  const auto first = make<UIImage>();
  const auto second = make<UIImage>();
  store(first, "key");
  store(second, "key");
  EXPECT_EQ(stored("key"), second);
  EXPECT_FALSE(stored("other"));
  CachesCore::CachedImages()->removeObjectForKey("key");
  CachesCore::CachedImages()->removeObjectForKey("other");
  EXPECT_THAT(keys(), ElementsAre());
}

TEST_F(Stores, AreReplacedByNewOnesWhenTheCachesAreReset) {
  const auto images = CachesCore::CachedImages();
  const auto values = CachesCore::CachedValues();
  auto& queue = CachesCore::OperationsQueue();
  store(make<UIImage>(), "key");
  values->setObjectForKey(5, "key");
  CachesCore::ResetCaches();
  EXPECT_THAT(keys(), ElementsAre());
  EXPECT_THAT(CachesCore::CachedValues()->allKeys(), ElementsAre());
  EXPECT_NE(CachesCore::CachedImages(), images);
  EXPECT_NE(CachesCore::CachedValues(), values);
  EXPECT_THAT(images->allKeys(), ElementsAre("key"));
  EXPECT_EQ(std::any_cast<int>(values->objectForKey("key")), 5);
  EXPECT_EQ(&CachesCore::OperationsQueue(), &queue);
}

TEST_F(Stores, AreUsedByManyThreadsAtOnce) {
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([number] {
      for (int i = 0; i < 500; ++i) {
        store(make<UIImage>(), "key" + std::to_string(i % 7));
        stored("key" + std::to_string(i % 5));
        CachesCore::deleteValuesWithRangeOfString("y" + std::to_string(number));
        if (i % 100 == 0) CachesCore::ResetCaches();
      }
    });
  }
  for (auto& thread : threads) thread.join();
  CachesCore::ResetCaches();
  EXPECT_THAT(keys(), ElementsAre());
}

TEST_F(Icons, AreTheLargestThatThereIsWhateverTheScreen) {
  writeIcon("folder_icon.png", picture("10x10"));
  EXPECT_EQ(widthOf(CachesCore::cachedImageWithContentsOfFileName("folder_icon")), 10U);
  CachesCore::ResetCaches();
  writeIcon("folder_icon@2x.png", picture("20x20"));
  EXPECT_EQ(widthOf(CachesCore::cachedImageWithContentsOfFileName("folder_icon")), 20U);
  CachesCore::ResetCaches();
  writeIcon("folder_icon@3x.png", picture("30x30"));
  const auto icon = CachesCore::cachedImageWithContentsOfFileName("folder_icon");
  EXPECT_EQ(widthOf(icon), 30U);
  EXPECT_EQ(icon->size(), (CGSize{10, 10}));
}

TEST_F(Icons, AreReadOnceAndKeptByTheirBareName) {
  writeIcon("folder_icon@2x.png", picture("20x20"));
  const auto icon = CachesCore::cachedImageWithContentsOfFileName("folder_icon");
  EXPECT_THAT(keys(), ElementsAre("folder_icon"));
  writeIcon("folder_icon@3x.png", picture("30x30"));
  EXPECT_EQ(CachesCore::cachedImageWithContentsOfFileName("folder_icon"), icon);
}

TEST_F(Icons, WithoutAFileAreNoneAndLookedForAgain) {
  EXPECT_FALSE(CachesCore::cachedImageWithContentsOfFileName("camera_icon"));
  EXPECT_THAT(keys(), ElementsAre());
  writeIcon("camera_icon.png", picture("10x10"));
  EXPECT_TRUE(CachesCore::cachedImageWithContentsOfFileName("camera_icon"));
}

TEST_F(Icons, WhoseLargestFileIsDamagedAreNone) {
  writeIcon("camera_icon@3x.png", "no picture");
  writeIcon("camera_icon.png", picture("10x10"));
  EXPECT_FALSE(CachesCore::cachedImageWithContentsOfFileName("camera_icon"));
  EXPECT_THAT(keys(), ElementsAre());
}

TEST_F(Icons, ThatTheStoreHasNeedNoFile) {
  const auto image = make<UIImage>();
  store(image, "heart_icon");
  EXPECT_EQ(CachesCore::cachedImageWithContentsOfFileName("heart_icon"), image);
}

TEST_F(Stores, KeepThePictureOfAPathByThePath) {
  _device.media().write("a.png", picture("12x12"));
  const auto image = CachesCore::cachedImageWithContentsOfPath("/var/mobile/Media/a.png");
  EXPECT_EQ(widthOf(image), 12U);
  EXPECT_THAT(keys(), ElementsAre("/var/mobile/Media/a.png"));
  _device.media().write("a.png", picture("13x13"));
  EXPECT_EQ(CachesCore::cachedImageWithContentsOfPath("/var/mobile/Media/a.png"), image);
}

TEST_F(Stores, KeepNothingOfAPathWithoutAPictureAndTryAgain) {
  _device.media().write("a.png", "no picture");
  EXPECT_FALSE(CachesCore::cachedImageWithContentsOfPath("/var/mobile/Media/a.png"));
  EXPECT_FALSE(CachesCore::cachedImageWithContentsOfPath("/var/mobile/Media/absent.png"));
  EXPECT_THAT(keys(), ElementsAre());
  _device.media().write("a.png", picture("12x12"));
  EXPECT_TRUE(CachesCore::cachedImageWithContentsOfPath("/var/mobile/Media/a.png"));
}

TEST_F(Loading, APictureThatIsStoredIsShownAtOnceAndWithoutASpinner) {
  const auto image = make<UIImage>();
  store(image, artwork);
  CachesCore::setImageViewWithContentOfUrl(_view, artwork);
  EXPECT_EQ(_view->image(), image);
  EXPECT_FALSE(isWaiting(_view));
}

TEST_F(Loading, ASpinnerTurnsInTheMiddleUntilThePictureIsThere) {
  stageArtwork(picture("40x30"));
  const auto before = make<UIImage>();
  _view->setImage(before);
  CachesCore::setImageViewWithContentOfUrl(_view, artwork);
  ASSERT_EQ(_view->subviews().size(), 1U);
  const auto* spinner = dynamic_cast<UIActivityIndicatorView*>(_view->subviews()[0].get());
  ASSERT_TRUE(spinner);
  EXPECT_EQ(spinner->activityIndicatorViewStyle(), UIActivityIndicatorViewStyle::WhiteLarge);
  EXPECT_EQ(spinner->center(), (CGPoint{50, 30}));
  EXPECT_EQ(spinner->autoresizingMask(), 45U);
  EXPECT_TRUE(spinner->isAnimating());
  EXPECT_EQ(_view->image(), before);
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
  EXPECT_EQ(widthOf(_view->image()), 40U);
  EXPECT_EQ(stored(artwork), _view->image());
  EXPECT_THAT(keys(), ElementsAre(artwork));
}

TEST_F(Loading, TheViewChangesOnTheMainThreadAlone) {
  stageArtwork(picture("40x30"));
  CachesCore::setImageViewWithContentOfUrl(_view, artwork);
  while (!stored(artwork)) std::this_thread::yield();
  EXPECT_TRUE(isWaiting(_view)) << "nothing happens before the main thread's turn";
  EXPECT_FALSE(_view->image());
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
}

TEST_F(Loading, APictureComesFromAServer) {
  const auto bytes = picture("44x33", "cover.jpg");
  TestPeer peer([&](const std::string&) { return TestPeer::ok(bytes); });
  CachesCore::setImageViewWithContentOfUrl(_view, peer.url("/cover.jpg"));
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
  EXPECT_EQ(widthOf(_view->image()), 44U);
  EXPECT_TRUE(stored(peer.url("/cover.jpg")));
}

TEST_F(Loading, WhatCannotBeHadClearsTheViewAndIsTriedAgain) {
  TestPeer peer([](const std::string&) { return "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"; });
  stageArtwork("no picture");
  for (const std::string& url : {std::string(artwork), peer.url("/"), std::string("file:///etc/hostname"),
                                 std::string("no url at all"), std::string()}) {
    _view->setImage(make<UIImage>());
    CachesCore::setImageViewWithContentOfUrl(_view, url);
    EXPECT_TRUE(isWaiting(_view)) << url;
    EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); })) << url;
    EXPECT_FALSE(_view->image()) << url;
    _view->setImage(make<UIImage>());
    CachesCore::setImageViewWithContentOfUrlWithBlur(_view, url, 12);
    EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); })) << url;
    EXPECT_FALSE(_view->image()) << url;
  }
  EXPECT_THAT(keys(), ElementsAre());
  stageArtwork(picture("40x30"));
  CachesCore::setImageViewWithContentOfUrl(_view, artwork);
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
  EXPECT_TRUE(_view->image());
}

TEST_F(Loading, OfTwoForTheSameURLBothLoad) {
  const auto bytes = picture("44x33");
  TestPeer peer([&](const std::string&) { return TestPeer::ok(bytes); });
  const auto other = make<UIImageView>();
  CachesCore::setImageViewWithContentOfUrl(_view, peer.url("/"));
  CachesCore::setImageViewWithContentOfUrl(other, peer.url("/"));
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view) && !isWaiting(other); }));
  EXPECT_EQ(peer.requests(), 2U);
  EXPECT_TRUE(_view->image());
  EXPECT_TRUE(other->image());
  EXPECT_TRUE(stored(peer.url("/")) == _view->image() || stored(peer.url("/")) == other->image());
}

TEST_F(Loading, AViewLivesUntilItsPictureCameAndDiesOnTheMainThread) {
  stageArtwork(picture("40x30"));
  for (int i = 0; i < 50; ++i) {
    const auto alive = _view->liveness();
    CachesCore::ResetCaches();
    CachesCore::setImageViewWithContentOfUrl(_view, artwork);
    CachesCore::setImageViewWithContentOfUrlWithBlur(_view, artwork, 2);
    _view = nullptr;
    EXPECT_TRUE(*alive);
    EXPECT_TRUE(runLoopUntil([&] { return !*alive; }));
    _view = make<UIImageView>();
  }
}

TEST_F(Loading, WithoutAViewThePictureIsStoredAllTheSame) {
  stageArtwork(picture("40x30"));
  CachesCore::setImageViewWithContentOfUrl(nullptr, artwork);
  EXPECT_TRUE(runLoopUntil([&] { return bool(stored(artwork)); }));
  CachesCore::setImageViewWithContentOfUrl(nullptr, artwork);
  CachesCore::setImageViewWithContentOfUrlWithBlur(nullptr, artwork, 3);
  EXPECT_TRUE(runLoopUntil([&] { return keys().size() == 2; }));
  finishOperations();
}

TEST_F(Blurring, ABlurredPictureIsKeptBesideThePlainOne) {
  stageArtwork(picture("100x100"));
  CachesCore::setImageViewWithContentOfUrlWithBlur(_view, artwork, 12);
  ASSERT_EQ(_view->subviews().size(), 1U);
  EXPECT_EQ(_view->subviews()[0]->center(), (CGPoint{50, 30}));
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
  EXPECT_THAT(keys(), ElementsAre(artwork, std::string(artwork) + "-blur-12"));
  EXPECT_EQ(_view->image(), stored(std::string(artwork) + "-blur-12"));
  EXPECT_NE(_view->image(), stored(artwork));
}

TEST_F(Blurring, ABlurredPictureThatIsStoredIsShownAtOnce) {
  const auto image = make<UIImage>();
  store(image, std::string(artwork) + "-blur-7");
  CachesCore::setImageViewWithContentOfUrlWithBlur(_view, artwork, 7);
  EXPECT_EQ(_view->image(), image);
  EXPECT_FALSE(isWaiting(_view));
  stageArtwork(picture("100x100"));
  CachesCore::setImageViewWithContentOfUrlWithBlur(_view, artwork, 8);
  EXPECT_TRUE(isWaiting(_view)) << "another radius is another picture";
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
}

TEST_F(Blurring, ThePlainPictureIsTakenFromTheStore) {
  store(UIImage::imageWithData(NSData(picture("100x100"))), "http://localhost:1/never-asked.png");
  CachesCore::setImageViewWithContentOfUrlWithBlur(_view, "http://localhost:1/never-asked.png", 5);
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
  EXPECT_TRUE(_view->image());
}

TEST_F(Blurring, APictureThatCannotBeDecodedGivesNoneAndIsNotKept) {
  auto bytes = picture("64x64");
  bytes[bytes.size() / 2] ^= 0x55;  // its head is whole
  stageArtwork(bytes);
  CachesCore::setImageViewWithContentOfUrlWithBlur(_view, artwork, 12);
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
  EXPECT_FALSE(_view->image());
  EXPECT_FALSE(stored(std::string(artwork) + "-blur-12"));
}

Ref<UIImage> flatImage(uint32_t width, uint32_t height, uint8_t value) {
  auto pixels = std::make_unique<uint8_t[]>(size_t{width} * height * 4);
  std::fill_n(pixels.get(), size_t{width} * height * 4, value);
  return UIImage::imageWithCGImage(make<CGImage>(width, height, std::move(pixels)));
}

TEST_F(Blurring, TheBlurIsCutBackByAThirtiethOfItsExtentOnEachSide) {
  // 300 grow to 372, of which a thirtieth is 12.4: from 12.4, 276.2 wide and 275.2 high, to whole pixels.
  const auto image = flatImage(300, 300, 200);
  const auto blurred = CachesCore::blurredImageWithBlur(image, 12);
  EXPECT_EQ(blurred->scale(), 1);
  EXPECT_EQ(blurred->pixelSize().width, 277U);
  EXPECT_EQ(blurred->pixelSize().height, 276U);
  const auto filter = CIFilter::filterWithName("CIGaussianBlur");
  filter->setInputImage(CIImage::imageWithCGImage(image->bitmap()));
  filter->setInputRadius(12);
  const auto expected = CIContext::contextWithOptions(nullptr)->createCGImageFromRect(
      filter->outputImage(), {-36 + 36 + 12.4, -36 + 36 + 12.4, 276.2, 275.2});
  EXPECT_TRUE(std::ranges::equal(blurred->bitmap()->bytes(), expected->bytes()));
}

TEST_F(Blurring, APictureOfAnyShapeKeepsItsMiddle) {
  const auto wide = CachesCore::blurredImageWithBlur(flatImage(300, 90, 200), 2);
  // 312 x 102: from 10.4 and 3.4, 280.2 wide and 83.2 high.
  EXPECT_EQ(wide->pixelSize().width, 281U);
  EXPECT_EQ(wide->pixelSize().height, 84U);
  EXPECT_EQ(wide->bitmap()->row(42)[140 * 4], 200);
}

TEST_F(Blurring, ARadiusOfNoneOnlyCuts) {
  const auto image = CachesCore::blurredImageWithBlur(flatImage(30, 30, 77), 0);
  EXPECT_EQ(image->pixelSize().width, 29U);   // from 1, 29 wide
  EXPECT_EQ(image->pixelSize().height, 28U);  // from 1, 28 high
  for (const uint8_t value : image->bitmap()->bytes()) ASSERT_EQ(value, 77);
}

TEST_F(Blurring, WhatIsTooSmallForItsRadiusGivesNone) {
  // 10 grow to 250, of which a fifteenth is more than 10.
  EXPECT_FALSE(CachesCore::blurredImageWithBlur(flatImage(10, 10, 200), 40));
  EXPECT_FALSE(CachesCore::blurredImageWithBlur(flatImage(300, 300, 200), 1'000'000));
  EXPECT_FALSE(CachesCore::blurredImageWithBlur(make<UIImage>(), 12));
  EXPECT_FALSE(CachesCore::blurredImageWithBlur(nullptr, 12));
  stageArtwork(picture("10x10"));
  CachesCore::setImageViewWithContentOfUrlWithBlur(_view, artwork, 40);
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
  EXPECT_FALSE(_view->image());
  EXPECT_THAT(keys(), ElementsAre(artwork));
}

TEST_F(Deleting, RemovesEveryEntryWhoseKeyContainsTheText) {
  for (const auto* key :
       {"file:/x/a/b.jpg", "file:/x/a/b.jpg-blur-12", "a/b.jpg", "file:/x/A/B.JPG", "file:/x/a/c.jpg"})
    store(make<UIImage>(), key);
  CachesCore::CachedValues()->setObjectForKey(1, "of a/b.jpg too");
  CachesCore::CachedValues()->setObjectForKey(2, "other");
  CachesCore::deleteValuesWithRangeOfString("a/b.jpg");
  EXPECT_THAT(keys(), UnorderedElementsAre("file:/x/A/B.JPG", "file:/x/a/c.jpg"));
  EXPECT_THAT(CachesCore::CachedValues()->allKeys(), ElementsAre("other"));
}

TEST_F(Deleting, TakesTheTextAsItIsWritten) {
  store(make<UIImage>(), "a.*[b]");
  store(make<UIImage>(), "axxb");
  CachesCore::deleteValuesWithRangeOfString("a.*b");
  EXPECT_EQ(keys().size(), 2U);
  CachesCore::deleteValuesWithRangeOfString("[b]");
  EXPECT_THAT(keys(), ElementsAre("axxb"));
  CachesCore::deleteValuesWithRangeOfString("");
  EXPECT_THAT(keys(), ElementsAre("axxb"));
}

TEST_F(Deleting, LetsRewrittenArtworkBeLoadedAnew) {
  stageArtwork(picture("40x30"));
  CachesCore::setImageViewWithContentOfUrl(_view, artwork);
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
  stageArtwork(picture("50x30"));
  CachesCore::setImageViewWithContentOfUrl(_view, artwork);
  EXPECT_EQ(widthOf(_view->image()), 40U);
  CachesCore::deleteValuesWithRangeOfString(artwork);
  CachesCore::setImageViewWithContentOfUrl(_view, artwork);
  EXPECT_TRUE(runLoopUntil([&] { return !isWaiting(_view); }));
  EXPECT_EQ(widthOf(_view->image()), 50U);
}

}  // namespace
}  // namespace quaverly
