#include "Platform/Foundation/NSByteCountFormatter.h"

#include <gtest/gtest.h>

#include <limits>

#include "Support/TestDevice.h"

namespace quaverly {
namespace {

std::string formatted(uint64_t bytes) {
  return NSByteCountFormatter::stringFromByteCountCountStyle(bytes, NSByteCountFormatterCountStyle::File);
}

struct SizeCase {
  uint64_t bytes;
  const char* text;
};

TEST(ByteCountFormatter, WritesSizesAsFilesAreCounted) {
  const test::TestDevice device;
  const SizeCase cases[] = {
      {0, "Zero KB"},
      {1, "1 byte"},
      {2, "2 bytes"},
      {999, "999 bytes"},
      {1'000, "1 KB"},
      {1'499, "1 KB"},
      {1'500, "2 KB"},
      {2'500, "2 KB"},
      {2'501, "3 KB"},
      {999'499, "999 KB"},
      {999'500, "1 MB"},
      {1'000'000, "1 MB"},
      {1'049'999, "1 MB"},
      {1'050'000, "1 MB"},
      {1'050'001, "1.1 MB"},
      {1'150'000, "1.2 MB"},
      {5'242'880, "5.2 MB"},
      {10'000'000, "10 MB"},
      {999'949'999, "999.9 MB"},
      {999'950'000, "1 GB"},
      {1'000'000'000, "1 GB"},
      {1'005'000'000, "1 GB"},
      {1'005'000'001, "1.01 GB"},
      {1'015'000'000, "1.02 GB"},
      {1'050'000'000, "1.05 GB"},
      {1'500'000'000, "1.5 GB"},
      {999'994'999'999, "999.99 GB"},
      {999'995'000'000, "1 TB"},
      {2'340'000'000'000, "2.34 TB"},
      {7'000'000'000'000'000, "7 PB"},
      {9'223'372'036'854'775'807, "9.22 EB"},
      {std::numeric_limits<uint64_t>::max(), "18.45 EB"},
  };
  for (const auto& [bytes, text] : cases) EXPECT_EQ(formatted(bytes), text) << bytes;
}

TEST(ByteCountFormatter, WritesTheLocalesDecimalSignAndDigits) {
  test::TestDevice device;
  device->localeIdentifier = "de_DE";
  EXPECT_EQ(formatted(1'500'000), "1,5 MB");
  EXPECT_EQ(formatted(12'345'678'901), "12,35 GB");
  EXPECT_EQ(formatted(1'000'000), "1 MB");
  device->localeIdentifier = "ar_EG";
  EXPECT_EQ(formatted(1'500'000), "\u0661\u066B\u0665 MB");
  EXPECT_EQ(formatted(0), "Zero KB");
}

}  // namespace
}  // namespace quaverly
