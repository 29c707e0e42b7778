#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <turbojpeg.h>

#include <array>

#include "Platform/UIKit/UIImage.h"
#include "Support/AudioFiles.h"
#include "Support/Command.h"
#include "Support/TagBytes.h"

namespace quaverly {
namespace {

using namespace std::string_literals;
using test::contentsOf;
using test::number;
using testing::Each;
using testing::Ge;
using testing::Le;

std::string chunk(std::string_view type, std::string_view data) {
  // Checksums are the decoder's to judge; this table is exact enough for it.
  uint32_t crc = 0xffffffff;
  for (const char c : std::string(type) + std::string(data)) {
    crc ^= static_cast<uint8_t>(c);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xedb88320 : 0);
  }
  return number(data.size(), 4) + std::string(type) + std::string(data) + number(~crc, 4);
}

/// A PNG file of eight bits a channel, its rows given as they are, or a part of them.
std::string png(size_t width, size_t height, int colourType, std::string_view rows,
                std::string_view more = "") {
  const auto head = number(width, 4) + number(height, 4) + "\x08" + static_cast<char>(colourType) + "\0\0\0"s;
  return "\x89PNG\r\n\x1a\n" + chunk("IHDR", head) + std::string(more) + chunk("IDAT", test::deflated(rows)) +
         chunk("IEND", "");
}

std::string rowsOf(size_t width, size_t height, std::string_view pixel) {
  std::string rows;
  for (size_t y = 0; y < height; ++y) {
    rows += '\0';
    for (size_t x = 0; x < width; ++x) rows += pixel;
  }
  return rows;
}

std::string jpegOf(const std::string& file, double quality = 1) {
  const auto image = UIImage::imageWithData(NSData(std::string_view(file)));
  const auto jpeg = image ? UIImageJPEGRepresentation(*image, quality) : std::nullopt;
  return jpeg ? std::string(jpeg->text()) : "none";
}

bool isImage(const std::string& file) {
  return bool(UIImage::imageWithData(NSData(std::string_view(file))));
}

/// The pixels of a JPEG file, decoded by djpeg: three bytes each.
std::vector<int> pixelsOf(const std::string& jpeg) {
  const test::TemporaryFolder folder;
  const auto ppm = test::run("djpeg -ppm -dct int " + folder.write("image.jpg", jpeg));
  const size_t head = ppm.find("255\n") + 4;  // P6, width, height, 255
  std::vector<int> bytes;
  for (size_t i = head; i < ppm.size(); ++i) bytes.push_back(static_cast<uint8_t>(ppm[i]));
  return bytes;
}

/// Where the frame header of a JPEG file begins.
size_t frameHeader(const std::string& jpeg) {
  size_t at = 2;
  while (static_cast<uint8_t>(jpeg[at + 1]) < 0xc0 || static_cast<uint8_t>(jpeg[at + 1]) > 0xc2)
    at += 2 + static_cast<uint8_t>(jpeg[at + 2]) * 256u + static_cast<uint8_t>(jpeg[at + 3]);
  return at;
}

TEST(UIImage, IsMadeOfJPEGAndPNGAloneToldByContent) {
  const test::TemporaryFolder folder;
  EXPECT_TRUE(isImage(contentsOf(test::makePicture(folder, "a.jpg"))));
  EXPECT_TRUE(isImage(contentsOf(test::makePicture(folder, "a.png"))));
  EXPECT_FALSE(isImage(contentsOf(test::makePicture(folder, "a.gif"))));
  EXPECT_FALSE(isImage(contentsOf(test::makePicture(folder, "a.bmp"))));
  EXPECT_FALSE(isImage(contentsOf(test::makePicture(folder, "a.webp"))));
  for (const auto* text : {"", "text", "\xff\xd8\xff", "\x89PNG\r\n\x1a\n"})
    EXPECT_FALSE(isImage(text)) << text;
}

TEST(UIImage, KnowsItsSizeInPixels) {
  const test::TemporaryFolder folder;
  for (const auto* name : {"a.jpg", "a.png"}) {
    const auto image = UIImage::imageWithData(NSData(contentsOf(test::makePicture(folder, name, "70x50"))));
    EXPECT_EQ(image->pixelSize().width, 70U) << name;
    EXPECT_EQ(image->pixelSize().height, 50U) << name;
  }
}

TEST(UIImage, IsNoneWithMorePixelsThanAreWorthDecoding) {
  EXPECT_TRUE(isImage(png(20'000, 5'000, 0, std::string(100'100'000, '\0'))));
  EXPECT_FALSE(isImage(png(20'000, 5'001, 0, std::string(100'100'000, '\0'))));
  const test::TemporaryFolder folder;
  auto jpeg = contentsOf(test::makePicture(folder, "a.jpg"));
  jpeg.replace(frameHeader(jpeg) + 5, 4, number(10'000, 2) + number(10'001, 2));
  EXPECT_FALSE(isImage(jpeg));
  jpeg.replace(frameHeader(jpeg) + 5, 4, number(10'000, 2) + number(10'000, 2));
  EXPECT_TRUE(isImage(jpeg));
}

TEST(UIImage, IsNoneWhenItAnnouncesMoreThanItCanHold) {
  EXPECT_FALSE(isImage(png(9'000, 9'000, 6, "few rows")));
}

TEST(UIImage, IsNoneWithTooManyScansOrChunks) {
  const test::TemporaryFolder folder;
  const auto jpeg = contentsOf(test::makePicture(folder, "a.jpg"));
  const auto withScans = [&](int count) {
    std::string scans;
    for (int i = 0; i < count; ++i) scans += "\xff\xda";
    return jpeg + scans;
  };
  EXPECT_TRUE(isImage(withScans(90)));
  EXPECT_FALSE(isImage(withScans(100)));
  std::string chunks;
  for (int i = 0; i < 190; ++i) chunks += chunk("tEXt", "a");
  EXPECT_TRUE(isImage(png(1, 1, 0, rowsOf(1, 1, "x"), chunks)));
  for (int i = 0; i < 20; ++i) chunks += chunk("tEXt", "a");
  EXPECT_FALSE(isImage(png(1, 1, 0, rowsOf(1, 1, "x"), chunks)));
}

TEST(UIImageJPEGRepresentation, HasFullColourResolution) {
  const test::TemporaryFolder folder;
  for (const auto* name : {"a.jpg", "a.png"}) {
    const auto jpeg = jpegOf(contentsOf(
        test::makePicture(folder, name, "64x48", "-pix_fmt "s + (name == "a.jpg"s ? "yuvj420p" : "rgb24"))));
    const size_t at = frameHeader(jpeg);
    EXPECT_EQ(jpeg[at + 9], 3) << "components";
    for (const size_t component : {0U, 1U, 2U}) EXPECT_EQ(jpeg[at + 11 + component * 3], 0x11) << name;
  }
}

TEST(UIImageJPEGRepresentation, ShowsWhatTheOriginalShows) {
  const test::TemporaryFolder folder;
  const auto picture = test::makePicture(folder, "a.png", "64x48", "-pix_fmt rgb24");
  const auto raw = test::run("ffmpeg -v error -i " + picture + " -f rawvideo -pix_fmt rgb24 -");
  const auto pixels = pixelsOf(jpegOf(contentsOf(picture)));
  ASSERT_EQ(pixels.size(), raw.size());
  int worst = 0;
  for (size_t i = 0; i < raw.size(); ++i)
    worst = std::max(worst, std::abs(pixels[i] - static_cast<uint8_t>(raw[i])));
  EXPECT_LE(worst, 6);
}

TEST(UIImageJPEGRepresentation, LaysTransparencyOnWhite) {
  const auto transparent = jpegOf(png(16, 16, 6, rowsOf(16, 16, "\0\0\0\0"s)));
  EXPECT_THAT(pixelsOf(transparent), Each(Ge(254)));
  const auto half = jpegOf(png(16, 16, 6, rowsOf(16, 16, "\0\0\0\x80"s)));
  EXPECT_THAT(pixelsOf(half), Each(testing::AllOf(Ge(126), Le(128))));
  const auto opaque = jpegOf(png(16, 16, 6, rowsOf(16, 16, "\0\0\0\xff"s)));
  EXPECT_THAT(pixelsOf(opaque), Each(Le(1)));
  const auto grey = jpegOf(png(16, 16, 4, rowsOf(16, 16, "\0\0"s)));
  EXPECT_THAT(pixelsOf(grey), Each(Ge(254)));
}

TEST(UIImageJPEGRepresentation, ReadsFilesForPrint) {
  std::string inks;
  for (int i = 0; i < 16 * 16; ++i) inks += "\xff\x80\xff\xff";  // inverted: some magenta
  const tjhandle compressor = tjInitCompress();
  unsigned char* buffer = nullptr;
  unsigned long length = 0;
  ASSERT_EQ(tjCompress2(compressor, reinterpret_cast<const unsigned char*>(inks.data()), 16, 0, 16, TJPF_CMYK,
                        &buffer, &length, TJSAMP_444, 100, 0),
            0);
  const std::string file(reinterpret_cast<char*>(buffer), length);
  tjFree(buffer);
  tjDestroy(compressor);
  const auto pixels = pixelsOf(jpegOf(file));
  EXPECT_NEAR(pixels[0], 255, 3);
  EXPECT_NEAR(pixels[1], 128, 3);
  EXPECT_NEAR(pixels[2], 255, 3);
}

TEST(UIImageJPEGRepresentation, ReadsProgressiveAndGreyFiles) {
  const test::TemporaryFolder folder;
  const auto ppm = test::makePicture(folder, "a.ppm");
  for (const auto* options : {"-progressive", "-grayscale", "-arithmetic"}) {
    const auto original = test::run("cjpeg -quality 95 "s + options + " " + ppm);
    const auto expected = test::run("djpeg -rgb -dct int " + folder.write("original.jpg", original));
    const auto pixels = pixelsOf(jpegOf(original));
    ASSERT_EQ(pixels.size(), 64U * 48 * 3) << options;
    int worst = 0;
    for (size_t i = 0; i < pixels.size(); ++i)
      worst = std::max(
          worst, std::abs(pixels[i] - static_cast<uint8_t>(expected[expected.size() - pixels.size() + i])));
    EXPECT_LE(worst, 3) << options;
  }
}

TEST(UIImageJPEGRepresentation, OfAJPEGFileThatEndsTooEarlyIsWhatThereIs) {
  const test::TemporaryFolder folder;
  const auto whole = contentsOf(test::makePicture(folder, "a.jpg", "64x64"));
  const auto pixels = pixelsOf(jpegOf(whole.substr(0, whole.size() * 2 / 3)));
  EXPECT_EQ(pixels.size(), 64U * 64 * 3);
}

TEST(UIImageJPEGRepresentation, OfADamagedPNGFileIsNone) {
  const test::TemporaryFolder folder;
  auto file = contentsOf(test::makePicture(folder, "a.png", "64x64"));
  EXPECT_EQ(jpegOf(file.substr(0, file.size() / 2)), "none");
  file[file.size() / 2] ^= 0x55;
  EXPECT_EQ(jpegOf(file), "none");
}

TEST(UIImageJPEGRepresentation, IsTheSameEachTime) {
  const test::TemporaryFolder folder;
  std::vector<std::string> files;
  for (const auto* size : {"40x40", "41x41", "42x42", "43x43", "44x44", "45x45"})
    files.push_back(contentsOf(test::makePicture(folder, "a.png", size)));
  std::vector<std::string> first;
  for (const auto& file : files) first.push_back(jpegOf(file));
  for (size_t i = 0; i < files.size(); ++i) EXPECT_EQ(jpegOf(files[i]), first[i]);
  for (size_t i = 1; i < files.size(); ++i) EXPECT_NE(first[i], first[i - 1]);
}

TEST(UIImageJPEGRepresentation, IsSmallerAtLessQuality) {
  const test::TemporaryFolder folder;
  const auto file = contentsOf(test::makePicture(folder, "a.png", "200x200"));
  EXPECT_LT(jpegOf(file, 0.5).size(), jpegOf(file, 1).size());
  EXPECT_LT(jpegOf(file, -1).size(), jpegOf(file, 0.5).size());
  EXPECT_EQ(jpegOf(file, 7), jpegOf(file, 1));
}

}  // namespace
}  // namespace quaverly
