// Blurs pictures as the bundle does and with OpenCV, in turn, on one thread, and says how far both are from a
// true Gaussian. blur-compare SIZE... prints for each size: the size, the milliseconds of processor time of
// ours, of OpenCV on bytes and on floats, and the greatest and the mean difference of ours and of OpenCV.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "Platform/CoreImage/CIContext.h"
#include "Platform/CoreImage/CIFilter.h"

namespace {

using quaverly::CGImage;
using quaverly::Ref;
using Bytes = std::vector<uint8_t>;

constexpr int sigma = 12;
constexpr int border = 3 * sigma;
constexpr int rounds = 7;
constexpr size_t channels = 4;

/// Noise, steps, a slope and rings, all of it opaque.
Bytes makePicture(size_t size) {
  Bytes bytes(size * size * channels);
  uint32_t noise = 7;
  for (size_t y = 0; y < size; ++y) {
    for (size_t x = 0; x < size; ++x) {
      noise = noise * 1664525U + 1013904223U;
      uint8_t* const pixel = &bytes[(y * size + x) * channels];
      pixel[0] = static_cast<uint8_t>(((x / 37) ^ (y / 53)) & 1 ? 230 : noise >> 24);
      pixel[1] = static_cast<uint8_t>(x * 255 / size);
      pixel[2] = static_cast<uint8_t>((x * x + y * y) / (size * 8));
      pixel[3] = 255;
    }
  }
  return bytes;
}

Ref<quaverly::CIImage> blurOf(const Bytes& picture, uint32_t size) {
  auto pixels = std::make_unique<uint8_t[]>(picture.size());
  std::ranges::copy(picture, pixels.get());
  const auto filter = quaverly::CIFilter::filterWithName("CIGaussianBlur");
  filter->setInputImage(
      quaverly::CIImage::imageWithCGImage(quaverly::make<CGImage>(size, size, std::move(pixels))));
  filter->setInputRadius(sigma);
  return filter->outputImage();
}

/// OpenCV with what it needs, made once, so that only the blur is measured. Its result is that of bytes.
class OpenCV {
 public:
  explicit OpenCV(Bytes& picture, int size) : _picture(size, size, CV_8UC4, picture.data()) {
    cv::setNumThreads(1);
    _picture.convertTo(_floats, CV_32F);
  }
  void blurBytes() { blur(_picture, _padded, _result); }
  void blurFloats() { blur(_floats, _paddedFloats, _resultFloats); }
  const uint8_t* result() const { return _result.data; }

 private:
  static void blur(const cv::Mat& picture, cv::Mat& padded, cv::Mat& result) {
    cv::copyMakeBorder(picture, padded, border, border, border, border, cv::BORDER_CONSTANT,
                       cv::Scalar::all(0));
    cv::GaussianBlur(padded, result, cv::Size(0, 0), sigma, sigma, cv::BORDER_CONSTANT);
  }

  cv::Mat _picture, _padded, _result;
  cv::Mat _floats, _paddedFloats, _resultFloats;
};

template <class Work>
double milliseconds(const Work& work) {
  const std::clock_t start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) * 1000 / CLOCKS_PER_SEC;
}

double median(std::vector<double> times) {
  std::ranges::sort(times);
  return times[times.size() / 2];
}

/// Adds a line of `from`, weighted, to `into`.
template <class Number>
void addLine(const Number* from, double weight, size_t count, double* into) {
  for (size_t i = 0; i < count; ++i) into[i] += weight * from[i];
}

/// The true Gaussian in double precision, followed for six sigmas.
std::vector<double> trueBlur(const Bytes& picture, int size) {
  constexpr int reach = 6 * sigma;
  std::vector<double> weights;
  double sum = 0;
  for (int i = -reach; i <= reach; ++i) sum += weights.emplace_back(std::exp(-i * i / (2.0 * sigma * sigma)));
  const int width = size + 2 * border;
  const size_t length = static_cast<size_t>(width) * channels;
  std::vector<double> rows(length * static_cast<size_t>(size));
  std::vector<double> all(length * static_cast<size_t>(width));
  for (int i = -reach; i <= reach; ++i) {
    const double weight = weights[static_cast<size_t>(i + reach)] / sum;
    const int from = std::max(0, -border - i);
    const int to = std::min(size, width - border - i);
    for (int y = 0; y < size; ++y)
      addLine(&picture[static_cast<size_t>(y * size + from) * channels], weight,
              static_cast<size_t>(to - from) * channels,
              &rows[static_cast<size_t>(y) * length + static_cast<size_t>(from + border + i) * channels]);
  }
  for (int y = 0; y < width; ++y)
    for (int i = -reach; i <= reach; ++i)
      if (const int from = y - border + i; from >= 0 && from < size)
        addLine(&rows[static_cast<size_t>(from) * length], weights[static_cast<size_t>(i + reach)] / sum,
                length, &all[static_cast<size_t>(y) * length]);
  return all;
}

void printDifference(const std::vector<double>& expected, const uint8_t* actual) {
  double greatest = 0;
  double sum = 0;
  for (size_t i = 0; i < expected.size(); ++i) {
    const double difference = std::abs(expected[i] - actual[i]);
    greatest = std::max(greatest, difference);
    sum += difference;
  }
  std::printf(" %.3f %.3f", greatest, sum / static_cast<double>(expected.size()));
}

void compare(int size) {
  Bytes picture = makePicture(static_cast<size_t>(size));
  const auto blur = blurOf(picture, static_cast<uint32_t>(size));
  const auto context = quaverly::CIContext::contextWithOptions(nullptr);
  OpenCV peer(picture, size);
  Ref<CGImage> result;
  std::vector<double> ours, bytes, floats;
  for (int round = 0; round < rounds; ++round) {
    ours.push_back(milliseconds([&] { result = context->createCGImageFromRect(blur, blur->extent()); }));
    bytes.push_back(milliseconds([&] { peer.blurBytes(); }));
    floats.push_back(milliseconds([&] { peer.blurFloats(); }));
  }
  std::printf("%d %.2f %.2f %.2f", size, median(ours), median(bytes), median(floats));
  const auto expected = trueBlur(picture, size);
  printDifference(expected, result->bytes().data());
  printDifference(expected, peer.result());
  std::printf("\n");
}

}  // namespace

int main(int argumentCount, char** arguments) {
  for (int i = 1; i < argumentCount; ++i) compare(std::stoi(arguments[i]));
}
