#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "Platform/UIKit/UIImage.h"
#include "Support/TagBytes.h"

namespace quaverly {
namespace {

using namespace std::string_literals;
using test::number;

/// 48 pixels wide and 24 high: red, green, and below them blue and white.
std::string quarters() {
  auto pixels = std::make_unique<uint8_t[]>(48 * 24 * 4);
  for (size_t i = 0; i < 48 * 24; ++i) {
    const bool right = i % 48 >= 24;
    const bool bottom = i / 48 >= 12;
    const std::array<uint8_t, 4> color{uint8_t(right == bottom ? 255 : 0), uint8_t(right ? 255 : 0),
                                       uint8_t(bottom ? 255 : 0), 255};
    std::ranges::copy(color, pixels.get() + i * 4);
  }
  const auto image = UIImage::imageWithCGImage(make<CGImage>(48, 24, std::move(pixels)));
  return std::string(UIImageJPEGRepresentation(*image, 1)->text());
}

std::string reversed(std::string text) {
  std::ranges::reverse(text);
  return text;
}

/// Numbers highest byte first, or lowest first.
std::string exif(unsigned orientation, bool lowestFirst = false, unsigned type = 3) {
  const auto written = [&](size_t value, int count) {
    return lowestFirst ? reversed(number(value, count)) : number(value, count);
  };
  const auto entry = [&](size_t tag, size_t of, size_t value) {
    return written(tag, 2) + written(of, 2) + written(1, 4) + written(value, 2) + "\0\0"s;
  };
  return "Exif\0\0"s + (lowestFirst ? "II" : "MM") + written(42, 2) + written(8, 4) + written(2, 2) +
         entry(0x0100, 3, 48) + entry(0x0112, type, orientation) + written(0, 4);
}

std::string segment(const std::string& content, uint8_t mark = 0xe1) {
  return "\xff"s + static_cast<char>(mark) + number(content.size() + 2, 2) + content;
}

/// The file with more segments at its beginning.
std::string with(const std::string& segments) {
  auto file = quarters();
  return file.insert(2, segments);
}

Ref<UIImage> imageOf(const std::string& file) {
  return UIImage::imageWithData(NSData(std::string_view(file)));
}

char colorAt(const CGImage& image, size_t x, size_t y) {
  const auto pixel = image.row(y).subspan(x * 4, 3);
  const bool red = pixel[0] > 128;
  const bool green = pixel[1] > 128;
  return red && green ? 'W' : red ? 'R' : green ? 'G' : 'B';
}

/// The colours of the corners: both at the top, then both at the bottom.
std::string corners(const Ref<CGImage>& image) {
  if (!image) return "none";
  const size_t right = image->width() - 1;
  const size_t bottom = image->height() - 1;
  return {colorAt(*image, 0, 0), colorAt(*image, right, 0), colorAt(*image, 0, bottom),
          colorAt(*image, right, bottom)};
}

struct Case {
  unsigned orientation;
  const char* corners;
  bool isOnItsSide;
};

class JPEGOrientation : public testing::TestWithParam<Case> {};

TEST_P(JPEGOrientation, IsUndoneInSizeAndPixels) {
  for (const bool lowestFirst : {false, true}) {
    const auto image = imageOf(with(segment(exif(GetParam().orientation, lowestFirst))));
    ASSERT_TRUE(image);
    const auto bitmap = image->bitmap();
    EXPECT_EQ(corners(bitmap), GetParam().corners);
    EXPECT_EQ(image->size(), GetParam().isOnItsSide ? (CGSize{24, 48}) : (CGSize{48, 24}));
    EXPECT_EQ(bitmap->width(), image->pixelSize().width);
    EXPECT_EQ(bitmap->height(), image->pixelSize().height);
  }
}

TEST_P(JPEGOrientation, IsUndoneInWhatIsEncodedFromIt) {
  const auto image = imageOf(with(segment(exif(GetParam().orientation))));
  const auto encoded = UIImageJPEGRepresentation(*image, 1);
  ASSERT_TRUE(encoded);
  EXPECT_EQ(encoded->text().find("Exif"), std::string_view::npos);
  EXPECT_EQ(corners(UIImage::imageWithData(*encoded)->bitmap()), GetParam().corners);
}

// Where the stored picture's corners RG/BW lie when it is seen as it should be.
INSTANTIATE_TEST_SUITE_P(Each, JPEGOrientation,
                         testing::Values(Case{1, "RGBW", false}, Case{2, "GRWB", false},
                                         Case{3, "WBGR", false}, Case{4, "BWRG", false},
                                         Case{5, "RBGW", true}, Case{6, "BRWG", true}, Case{7, "WGBR", true},
                                         Case{8, "GWRB", true}));

TEST(JPEGOrientationOfCameras, IsFoundBehindOtherSegments) {
  const auto file = with(segment("JFIF\0\1\2\0\0\1\0\1\0\0"s, 0xe0) +
                         segment("http://ns.adobe.com/xap/1.0/\0"s) + segment(exif(6)));
  EXPECT_EQ(imageOf(file)->size(), (CGSize{24, 48}));
}

TEST(JPEGOrientationOfCameras, ThatMakesNoSenseIsNone) {
  for (const auto& content :
       {exif(0), exif(9), exif(0xffff), exif(6, false, 4), "Exif\0\0"s, "Exif\0\0MM"s,
        "Exif\0\0XX\0*\0\0\0\x08"s, "Exif\0\0MM\0*\xff\xff\xff\xff"s, "Exif\0\0MM\0*\0\0\0\x08\xff\xff"s,
        "Exif\0\0II*\0\0\0\0\0"s, "exif\0\0"s + exif(6).substr(6), ""s}) {
    const auto image = imageOf(with(segment(content)));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (CGSize{48, 24})) << testing::PrintToString(content);
    EXPECT_EQ(corners(image->bitmap()), "RGBW");
  }
}

TEST(JPEGOrientationOfCameras, ThatIsCutOffOrDamagedAnywhereIsHarmless) {
  const auto whole = exif(6);
  for (size_t length = 0; length < whole.size(); ++length) {
    const auto image = imageOf(with(segment(whole.substr(0, length))));
    ASSERT_TRUE(image) << length;
    EXPECT_NE(corners(image->bitmap()), "none") << length;
  }
  std::minstd_rand random(7);
  const auto file = with(segment(whole));
  for (int round = 0; round < 2000; ++round) {
    auto damaged = file;
    for (int i = 0; i < 3; ++i) damaged[2 + random() % (whole.size() + 4)] = static_cast<char>(random());
    if (round % 5 == 0) damaged.resize(2 + random() % (whole.size() + 6));
    const auto image = imageOf(damaged);
    const auto bitmap = image ? image->bitmap() : nullptr;
    if (!bitmap) continue;
    EXPECT_EQ(bitmap->width(), image->pixelSize().width);
  }
}

}  // namespace
}  // namespace quaverly
