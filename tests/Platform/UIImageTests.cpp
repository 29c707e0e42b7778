#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <turbojpeg.h>

#include <array>
#include <filesystem>

#include "Platform/UIKit/UIImage.h"
#include "Support/AudioFiles.h"
#include "Support/Command.h"
#include "Support/TagBytes.h"
#include "Support/TestDevice.h"

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

std::string mediaFile(std::string_view name) {
  return std::string(test::TestDevice::mediaPath) + "/" + std::string(name);
}

Ref<CGImage> bitmapOf(uint32_t width, uint32_t height, std::string_view bytes) {
  auto pixels = std::make_unique<uint8_t[]>(bytes.size());
  std::ranges::copy(bytes, pixels.get());
  return make<CGImage>(width, height, std::move(pixels));
}

std::string textOf(std::span<const uint8_t> bytes) {
  return {bytes.begin(), bytes.end()};
}

TEST(UIImage, OfAFileHasTheScaleInItsNameAndItsSizeInPoints) {
  test::TestDevice device;
  const auto picture = contentsOf(test::makePicture(device.temporary(), "a.png", "90x60"));
  const std::vector<std::pair<std::string, double>> cases = {
      {"icon.png", 1}, {"icon@2x.png", 2}, {"icon@3x.png", 3},   {"icon@3x", 3},
      {"@2x.png", 2},  {"icon@4x.png", 1}, {"icon@2x.b.png", 1}, {"a@3x/icon.png", 1}};
  for (const auto& [name, scale] : cases) {
    device.media().write(name, picture);
    const auto image = UIImage::imageWithContentsOfFile(mediaFile(name));
    ASSERT_TRUE(image) << name;
    EXPECT_EQ(image->scale(), scale) << name;
    EXPECT_EQ(image->size(), (CGSize{90 / scale, 60 / scale})) << name;
    EXPECT_EQ(image->pixelSize().width, 90U);
  }
}

TEST(UIImage, OfAFileThatIsNoneIsNone) {
  test::TestDevice device;
  device.media().write("text.png", "text");
  device.media().makeFolder("folder.png");
  for (const auto* name : {"text.png", "folder.png", "absent.png", ""})
    EXPECT_FALSE(UIImage::imageWithContentsOfFile(mediaFile(name))) << name;
  EXPECT_FALSE(UIImage::imageWithContentsOfFile("/etc/hostname"));
}

TEST(UIImage, OfAFileOutlivesIt) {
  test::TestDevice device;
  const auto path = test::makePicture(device.media(), "a.png");
  const auto picture = contentsOf(path);
  const auto image = UIImage::imageWithContentsOfFile(mediaFile("a.png"));
  std::filesystem::resize_file(path, 0);
  EXPECT_EQ(image->file()->data.text(), picture);
  EXPECT_FALSE(image->file()->data.slice()) << "no file stays open";
}

TEST(UIImage, OfAHugeFileIsNone) {
  test::TestDevice device;
  std::filesystem::resize_file(device.media().write("a.png", ""), UIImage::longestFile + 1);
  EXPECT_FALSE(UIImage::imageWithContentsOfFile(mediaFile("a.png")));
}

TEST(UIImage, WithoutAnythingIsEmpty) {
  const auto image = make<UIImage>();
  EXPECT_EQ(image->size(), CGSize());
  EXPECT_EQ(image->scale(), 1);
  EXPECT_FALSE(image->file());
  EXPECT_FALSE(image->bitmap());
  EXPECT_FALSE(image->encodedForDisplay());
  EXPECT_FALSE(UIImageJPEGRepresentation(*image, 1));
}

TEST(UIImage, KeepsAllButItsRenderingModeInAnother) {
  test::TestDevice device;
  test::makePicture(device.media(), "a@2x.png", "40x20");
  const auto image = UIImage::imageWithContentsOfFile(mediaFile("a@2x.png"));
  EXPECT_EQ(image->renderingMode(), UIImageRenderingMode::automatic);
  const auto stencil = image->imageWithRenderingMode(UIImageRenderingMode::alwaysTemplate);
  EXPECT_EQ(stencil->renderingMode(), UIImageRenderingMode::alwaysTemplate);
  EXPECT_EQ(static_cast<int>(stencil->renderingMode()), 2);
  EXPECT_EQ(stencil->size(), (CGSize{20, 10}));
  EXPECT_EQ(stencil->file()->data.text(), image->file()->data.text());
  EXPECT_EQ(image->renderingMode(), UIImageRenderingMode::automatic);
  const auto made = UIImage::imageWithCGImage(bitmapOf(1, 1, "\1\2\3\xff"));
  const auto original = made->imageWithRenderingMode(UIImageRenderingMode::alwaysOriginal);
  EXPECT_EQ(original->bitmap(), made->bitmap());
}

TEST(UIImage, OfPixelsHasThemAndAScaleOfOne) {
  const auto bitmap = bitmapOf(2, 1, "\1\2\3\xff\4\5\6\xff");
  const auto image = UIImage::imageWithCGImage(bitmap);
  EXPECT_EQ(image->size(), (CGSize{2, 1}));
  EXPECT_EQ(image->scale(), 1);
  EXPECT_EQ(image->bitmap(), bitmap);
  EXPECT_FALSE(image->file());
  EXPECT_FALSE(UIImage::imageWithCGImage(nullptr));
}

TEST(UIImageBitmap, KeepsTransparencyWithColoursMultipliedByIt) {
  const auto file = png(2, 2, 6, "\0\xff\x80\x01\xff\xff\x80\x01\x80\0\xff\x80\x01\0\x0a\x14\x1e\x01"s);
  const auto bitmap = UIImage::imageWithData(NSData(file))->bitmap();
  EXPECT_EQ(textOf(bitmap->bytes()), "\xff\x80\x01\xff\x80\x40\x01\x80\0\0\0\0\0\0\0\1"s);
  EXPECT_EQ(textOf(bitmap->row(1)), "\0\0\0\0\0\0\0\1"s);
}

TEST(UIImageBitmap, OfAJPEGFileIsOpaque) {
  const test::TemporaryFolder folder;
  const auto file = contentsOf(test::makePicture(folder, "a.jpg", "40x30"));
  const auto bitmap = UIImage::imageWithData(NSData(file))->bitmap();
  const auto expected = pixelsOf(file);
  ASSERT_EQ(bitmap->bytes().size(), 40U * 30 * 4);
  for (size_t i = 0; i < bitmap->bytes().size(); ++i) {
    const int value = bitmap->bytes()[i];
    ASSERT_EQ(value, i % 4 == 3 ? 255 : expected[i / 4 * 3 + i % 4]) << i;
  }
}

TEST(UIImageBitmap, OfADamagedFileIsNone) {
  const test::TemporaryFolder folder;
  auto file = contentsOf(test::makePicture(folder, "a.png", "64x64"));
  EXPECT_TRUE(UIImage::imageWithData(NSData(file))->bitmap());
  file[file.size() / 2] ^= 0x55;
  EXPECT_FALSE(UIImage::imageWithData(NSData(file))->bitmap());
}

TEST(UIImageForDisplay, IsTheFileThatItWasMadeFrom) {
  const test::TemporaryFolder folder;
  for (const auto* name : {"a.jpg", "a.png"}) {
    const auto file = contentsOf(test::makePicture(folder, name));
    const auto shown = UIImage::imageWithData(NSData(file))->encodedForDisplay();
    EXPECT_EQ(shown->data.text(), file);
    EXPECT_EQ(shown->format == UIImage::Format::png, name == "a.png"s);
  }
}

TEST(UIImageForDisplay, OfPixelsIsAPNGFileOfThem) {
  const test::TemporaryFolder folder;
  std::string pixels;
  std::string shown;
  for (int i = 0; i < 30 * 20; ++i) {
    const auto grey = static_cast<char>(i % 256);
    pixels += {grey, '\x40', '\0', '\xff'};
    shown += {grey, '\x40', '\0', '\xff'};
  }
  pixels.replace(0, 8, "\x40\x80\0\x80\0\0\0\0"s);  // half transparent, and wholly
  shown.replace(0, 8, "\x80\xff\0\x80\0\0\0\0"s);
  const auto file = UIImage::imageWithCGImage(bitmapOf(30, 20, pixels))->encodedForDisplay();
  EXPECT_EQ(file->format, UIImage::Format::png);
  const auto path = folder.write("a.png", file->data.text());
  EXPECT_EQ(test::run("ffmpeg -v error -i " + path + " -f rawvideo -pix_fmt rgba -"), shown);
  EXPECT_TRUE(isImage(std::string(file->data.text())));
}

TEST(UIImageJPEGRepresentation, OfPixelsShowsThemOnWhite) {
  std::string pixels;
  for (int i = 0; i < 16 * 16; ++i) pixels += "\x20\x40\x60\x80";  // half transparent
  const auto image = UIImage::imageWithCGImage(bitmapOf(16, 16, pixels));
  const auto shown = pixelsOf(std::string(UIImageJPEGRepresentation(*image, 1)->text()));
  EXPECT_NEAR(shown[0], 0x20 + 127, 1);
  EXPECT_NEAR(shown[1], 0x40 + 127, 1);
  EXPECT_NEAR(shown[2], 0x60 + 127, 1);
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
