#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "Platform/CoreImage/CIContext.h"
#include "Platform/CoreImage/CIFilter.h"

namespace quaverly {
namespace {

constexpr size_t channels = 4;

struct Picture {
  int width;
  int height;
  std::vector<uint8_t> bytes;

  Picture(int w, int h) : width(w), height(h), bytes(static_cast<size_t>(w * h) * channels) {}
  uint8_t* at(int x, int y) { return bytes.data() + static_cast<size_t>(y * width + x) * channels; }

  Ref<CIImage> image() const {
    auto pixels = std::make_unique<uint8_t[]>(bytes.size());
    std::ranges::copy(bytes, pixels.get());
    return CIImage::imageWithCGImage(
        make<CGImage>(static_cast<uint32_t>(width), static_cast<uint32_t>(height), std::move(pixels)));
  }
};

Picture flat(int width, int height, uint8_t value) {
  Picture picture(width, height);
  std::ranges::fill(picture.bytes, value);
  return picture;
}

/// Noise in one channel and as alpha, when it is to have some, and steps and slopes in the others.
Picture colourful(int width, int height, bool isOpaque, unsigned seed) {
  Picture picture(width, height);
  std::mt19937 random(seed);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t* pixel = picture.at(x, y);
      const unsigned alpha = isOpaque ? 255 : random() & 255;
      const unsigned colours[3] = {(x / 37 ^ y / 53) & 1 ? 230U : static_cast<unsigned>(random() & 255),
                                   static_cast<unsigned>(x * 255 / width),
                                   static_cast<unsigned>(x * x + y * y) / 16 & 255};
      for (int c = 0; c < 3; ++c) pixel[c] = static_cast<uint8_t>(colours[c] * alpha / 255);
      pixel[3] = static_cast<uint8_t>(alpha);
    }
  }
  return picture;
}

/// A true Gaussian in double precision: each line with all weights that matter, and no rounding.
struct TrueBlur {
  int border;
  int width;
  int height;
  std::vector<double> levels;

  TrueBlur(const Picture& picture, int sigma)
      : border(3 * sigma), width(picture.width + 2 * border), height(picture.height + 2 * border) {
    const int reach = 9 * sigma;
    std::vector<double> weights;
    double sum = 0;
    for (int i = -reach; i <= reach; ++i)
      sum += weights.emplace_back(sigma == 0 ? 1 : std::exp(-i * i / (2.0 * sigma * sigma)));
    const auto weight = [&](int distance) {
      return std::abs(distance) > reach ? 0 : weights[static_cast<size_t>(distance + reach)] / sum;
    };
    const auto size = static_cast<size_t>(width) * channels;
    std::vector<double> rows(size * static_cast<size_t>(picture.height));
    for (int y = 0; y < picture.height; ++y)
      for (int x = 0; x < width; ++x)
        for (int i = 0; i < picture.width; ++i)
          for (size_t c = 0; c < channels; ++c)
            rows[static_cast<size_t>(y) * size + static_cast<size_t>(x) * channels + c] +=
                weight(x - border - i) *
                picture.bytes[static_cast<size_t>(y * picture.width + i) * channels + c];
    levels.resize(size * static_cast<size_t>(height));
    for (int y = 0; y < height; ++y)
      for (int i = 0; i < picture.height; ++i)
        for (size_t x = 0; x < size; ++x)
          levels[static_cast<size_t>(y) * size + x] +=
              weight(y - border - i) * rows[static_cast<size_t>(i) * size + x];
  }
};

struct Difference {
  double greatest = 0;
  double mean = 0;
};

Difference between(const TrueBlur& expected, const CGImage& actual) {
  Difference difference;
  const auto bytes = actual.bytes();
  EXPECT_EQ(bytes.size(), expected.levels.size());
  for (size_t i = 0; i < bytes.size(); ++i) {
    const double here = std::abs(expected.levels[i] - bytes[i]);
    difference.greatest = std::max(difference.greatest, here);
    difference.mean += here / static_cast<double>(bytes.size());
  }
  return difference;
}

Ref<CIImage> blurred(const Ref<CIImage>& image, double radius) {
  const auto filter = CIFilter::filterWithName("CIGaussianBlur");
  filter->setDefaults();
  filter->setInputImage(image);
  filter->setInputRadius(radius);
  return filter->outputImage();
}

Ref<CGImage> pixelsOf(const Ref<CIImage>& image, const CGRect& rect) {
  return CIContext::contextWithOptions(nullptr)->createCGImageFromRect(image, rect);
}

Ref<CGImage> wholeOf(const Ref<CIImage>& image) {
  return pixelsOf(image, image->extent());
}

const uint8_t* pixelAt(const CGImage& image, size_t x, size_t y) {
  return image.row(y).data() + x * channels;
}

TEST(CIFilter, IsKnownByOneName) {
  EXPECT_TRUE(CIFilter::filterWithName("CIGaussianBlur"));
  EXPECT_FALSE(CIFilter::filterWithName("CIBoxBlur"));
  EXPECT_FALSE(CIFilter::filterWithName(""));
}

TEST(CIFilter, WithoutAnImageHasNoOutput) {
  const auto filter = CIFilter::filterWithName("CIGaussianBlur");
  EXPECT_FALSE(filter->outputImage());
  filter->setInputImage(flat(2, 2, 1).image());
  EXPECT_TRUE(filter->outputImage());
  filter->setDefaults();
  EXPECT_FALSE(filter->outputImage());
  EXPECT_FALSE(CIImage::imageWithCGImage(nullptr));
}

TEST(CIFilter, HasARadiusOfTenByDefault) {
  const auto filter = CIFilter::filterWithName("CIGaussianBlur");
  filter->setInputRadius(5);
  filter->setDefaults();
  filter->setInputImage(flat(100, 100, 1).image());
  EXPECT_EQ(filter->outputImage()->extent(), (CGRect{-30, -30, 160, 160}));
}

TEST(CIFilter, GrowsTheExtentByThreeRadiiOnEachSide) {
  const auto picture = flat(300, 300, 9).image();
  EXPECT_EQ(picture->extent(), (CGRect{0, 0, 300, 300}));
  EXPECT_EQ(blurred(picture, 12)->extent(), (CGRect{-36, -36, 372, 372}));
  EXPECT_EQ(blurred(picture, 0)->extent(), (CGRect{0, 0, 300, 300}));
  EXPECT_EQ(blurred(flat(20, 10, 9).image(), 1)->extent(), (CGRect{-3, -3, 26, 16}));
  EXPECT_EQ(blurred(picture, 0.4)->extent(), (CGRect{-2, -2, 304, 304})) << "to whole pixels";
}

TEST(CIFilter, TakesRadiiThatAreNoneForTheNearestThatIsOne) {
  const auto picture = flat(10, 10, 9).image();
  EXPECT_EQ(blurred(picture, -5)->extent(), picture->extent());
  EXPECT_EQ(blurred(picture, std::nan(""))->extent(), picture->extent());
  EXPECT_EQ(blurred(picture, 1e300)->extent(), blurred(picture, CIFilter::greatestRadius)->extent());
  const auto faint = pixelsOf(blurred(picture, 1e300), {0, 0, 10, 10});
  EXPECT_EQ(pixelAt(*faint, 5, 5)[3], 0);
}

TEST(GaussianBlur, OfRadiusZeroIsThePicture) {
  const auto picture = colourful(70, 40, false, 1);
  const auto same = wholeOf(blurred(picture.image(), 0));
  EXPECT_TRUE(std::ranges::equal(same->bytes(), picture.bytes));
  EXPECT_TRUE(std::ranges::equal(wholeOf(picture.image())->bytes(), picture.bytes));
}

TEST(GaussianBlur, OfAFlatPictureIsFlatFarFromItsEdges) {
  for (const int radius : {1, 2, 3, 5, 12, 20}) {
    const auto image = wholeOf(blurred(flat(200, 200, 255).image(), radius));
    const auto middle = static_cast<size_t>(100 + 3 * radius);
    for (size_t c = 0; c < channels; ++c) EXPECT_EQ(pixelAt(*image, middle, middle)[c], 255) << radius;
  }
}

TEST(GaussianBlur, OfAnEdgeIsHalfOfItThere) {
  // Along the middle of a side half of the Gaussian lies outside, where all is transparent.
  const auto image = blurred(flat(200, 200, 200).image(), 12);
  const auto sides = pixelsOf(image, {-1, 100, 2, 1});
  for (size_t c = 0; c < channels; ++c)
    EXPECT_NEAR(pixelAt(*sides, 0, 0)[c] + pixelAt(*sides, 1, 0)[c], 200, 1);
  const auto corner = pixelsOf(image, {-1, -1, 2, 2});
  double sum = 0;
  for (const size_t y : {0U, 1U})
    for (const size_t x : {0U, 1U}) sum += pixelAt(*corner, x, y)[3];
  EXPECT_NEAR(sum / 4, 50, 0.5) << "a quarter at a corner";
}

TEST(GaussianBlur, OfASinglePixelIsAGaussian) {
  Picture picture(1, 1);
  std::ranges::fill(picture.bytes, 255);
  const auto image = wholeOf(blurred(picture.image(), 1));
  ASSERT_EQ(image->width(), 7U);
  // exp(-x * x / 2) and so on, their sum 2.50663.
  const double weights[4] = {0.398942, 0.241971, 0.053991, 0.004432};
  for (int y = -3; y <= 3; ++y)
    for (int x = -3; x <= 3; ++x)
      EXPECT_NEAR(pixelAt(*image, static_cast<size_t>(x + 3), static_cast<size_t>(y + 3))[0],
                  255 * weights[std::abs(x)] * weights[std::abs(y)], 0.6)
          << x << ", " << y;
}

TEST(GaussianBlur, OfAPixelThreeRadiiAwayLeavesNothing) {
  const auto image = blurred(flat(40, 40, 255).image(), 4);
  const auto outside = pixelsOf(image, {-100, -100, 88, 300});
  for (const uint8_t value : outside->bytes()) ASSERT_EQ(value, 0);
}

TEST(GaussianBlur, IsAsExactAsItIsSaidForEveryRadius) {
  for (const int radius : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 16, 25, 40}) {
    for (const bool isOpaque : {true, false}) {
      const auto picture = colourful(90, 70, isOpaque, static_cast<unsigned>(radius));
      const auto difference = between(TrueBlur(picture, radius), *wholeOf(blurred(picture.image(), radius)));
      EXPECT_LE(difference.greatest, 0.8) << radius;
      EXPECT_LE(difference.mean, 0.25) << radius;
    }
  }
}

TEST(GaussianBlur, IsAsExactForPicturesOfAnyShape) {  // on average only rounding counts, if pixels are few
  const std::pair<int, int> shapes[] = {{1, 1}, {1, 300}, {300, 1}, {2, 7},
                                        {7, 2}, {8, 8},   {9, 33},  {129, 3}};
  for (const auto& [width, height] : shapes) {
    for (const int radius : {1, 3, 12}) {
      const auto picture = colourful(width, height, false, 3);
      const auto difference = between(TrueBlur(picture, radius), *wholeOf(blurred(picture.image(), radius)));
      EXPECT_LE(difference.greatest, 0.8) << width << " x " << height << ", " << radius;
    }
  }
}

TEST(GaussianBlur, IsAsExactForALargePicture) {
  const auto picture = colourful(500, 400, true, 7);
  const auto difference = between(TrueBlur(picture, 12), *wholeOf(blurred(picture.image(), 12)));
  EXPECT_LE(difference.greatest, 0.8);
  EXPECT_LE(difference.mean, 0.25);
}

TEST(GaussianBlur, NeverGivesAColourThatIsBrighterThanItsAlpha) {
  const auto image = wholeOf(blurred(colourful(100, 100, false, 5).image(), 6));
  for (size_t i = 0; i < image->bytes().size(); i += channels)
    for (size_t c = 0; c < 3; ++c) ASSERT_LE(image->bytes()[i + c], image->bytes()[i + 3] + 1) << i;
}

TEST(GaussianBlur, OfABlurGoesOnFromItsPixels) {
  // Two radii of 3 and 4 make one of 5.
  const auto picture = colourful(80, 80, true, 9);
  const auto twice = blurred(blurred(picture.image(), 3), 4);
  EXPECT_EQ(twice->extent(), (CGRect{-21, -21, 122, 122}));
  const auto difference = between(TrueBlur(picture, 5), *pixelsOf(twice, {-15, -15, 110, 110}));
  EXPECT_LE(difference.greatest, 2);
}

TEST(CIContext, RendersAnyPartAsInTheWhole) {
  const auto image = blurred(colourful(100, 80, false, 4).image(), 7);
  const auto whole = wholeOf(image);
  const auto part = pixelsOf(image, {13, -5, 31, 44});
  ASSERT_EQ(part->width(), 31U);
  ASSERT_EQ(part->height(), 44U);
  for (size_t y = 0; y < 44; ++y)
    for (size_t x = 0; x < 31; ++x)
      for (size_t c = 0; c < channels; ++c)
        ASSERT_NEAR(pixelAt(*part, x, y)[c], pixelAt(*whole, x + 13 + 21, y - 5 + 21)[c], 1)
            << x << ", " << y;
}

TEST(CIContext, WidensARectangleToWholePixels) {
  const auto image = blurred(flat(300, 300, 100).image(), 12);
  const auto part = pixelsOf(image, {12.4, 12.4, 276.2, 275.2});
  EXPECT_EQ(part->width(), 277U);   // 12 to 289
  EXPECT_EQ(part->height(), 276U);  // 12 to 288
  const auto exact = pixelsOf(image, {12, 12, 277, 276});
  EXPECT_TRUE(std::ranges::equal(part->bytes(), exact->bytes()));
  EXPECT_EQ(pixelsOf(image, {-0.5, 0, 0.25, 1})->width(), 1U);
}

TEST(CIContext, RendersNothingForARectangleThatIsNone) {
  const auto image = blurred(flat(10, 10, 100).image(), 2);
  constexpr double endless = std::numeric_limits<double>::infinity();
  const CGRect none[] = {{0, 0, 0, 5},           {0, 0, 5, 0},       {0, 0, -1, 5},
                         {0, 0, 5, -1},          {0, 0, endless, 5}, {0, 0, 1e6, 1e6},
                         {-endless, 0, 5, 5},    {0, 1e300, 5, 5},   {std::nan(""), 0, 5, 5},
                         {0, 0, std::nan(""), 5}};
  for (const auto& rect : none) EXPECT_FALSE(pixelsOf(image, rect)) << rect.x << ' ' << rect.width;
  EXPECT_FALSE(pixelsOf(nullptr, {0, 0, 5, 5}));
}

TEST(CIContext, RendersTransparencyFarFromThePicture) {
  const auto far = pixelsOf(blurred(flat(10, 10, 255).image(), 2), {5000, -7000, 3, 3});
  for (const uint8_t value : far->bytes()) EXPECT_EQ(value, 0);
}

}  // namespace
}  // namespace quaverly
