#include "Platform/Foundation/NSDateFormatter.h"

#include <gtest/gtest.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <thread>

#include "Support/TestDevice.h"

namespace quaverly {
namespace {

constexpr const char* listingPattern = "dd/MM/yyyy h:mm a";

std::chrono::sys_seconds instant(int64_t sinceEpoch) {
  return std::chrono::sys_seconds(std::chrono::seconds(sinceEpoch));
}

/// What our formatter says on a device with this locale and zone.
std::string ours(const std::string& locale, const std::string& zone, int64_t sinceEpoch,
                 const char* pattern = listingPattern) {
  Device::current().localeIdentifier = locale;
  Device::current().timeZoneName = zone;
  NSDateFormatter formatter;
  formatter.setDateFormat(pattern);
  return formatter.stringFromDate(instant(sinceEpoch)).value_or("nothing");
}

/// ICU's own formatting, at an offset that it is told.
class ICUPeer {
 public:
  explicit ICUPeer(const std::string& locale, const char* pattern = listingPattern)
      : _format(pattern, icu::Locale(locale.c_str()), _status) {}

  std::string string(int64_t sinceEpoch, long offset) {
    _format.adoptTimeZone(new icu::SimpleTimeZone(static_cast<int32_t>(offset * 1000), "test"));
    icu::UnicodeString text;
    _format.format(static_cast<UDate>(sinceEpoch) * 1000, text);
    std::string bytes;
    return text.toUTF8String(bytes);
  }

 private:
  UErrorCode _status = U_ZERO_ERROR;
  icu::SimpleDateFormat _format;
};

/// The offset from UTC that the system's C library knows.
long systemOffset(int64_t sinceEpoch) {
  const time_t time = sinceEpoch;
  tm local{};
  localtime_r(&time, &local);
  return local.tm_gmtoff;
}

void setProcessZone(const std::string& zone) {
  setenv("TZ", zone.c_str(), 1);
  tzset();
}

/// The last second before the offset changes between the two instants.
int64_t lastSecondBeforeChange(int64_t from, int64_t to) {
  const long before = systemOffset(from);
  while (to - from > 1) {
    const int64_t middle = from + (to - from) / 2;
    (systemOffset(middle) == before ? from : to) = middle;
  }
  return from;
}

constexpr int64_t year1900 = -2'208'988'800;
constexpr int64_t year2100 = 4'102'444'800;

/// For the process's zone: both sides of every change that is found, and some instants at random.
std::map<int64_t, long> expectedOffsets(std::mt19937_64& random) {
  std::map<int64_t, long> offsets;
  constexpr int64_t step = 20 * 86400;
  for (int64_t at = year1900; at < year2100; at += step) {
    if (systemOffset(at) == systemOffset(at + step)) continue;
    const int64_t last = lastSecondBeforeChange(at, at + step);
    for (const int64_t edge : {last, last + 1}) offsets[edge] = systemOffset(edge);
  }
  std::uniform_int_distribution<int64_t> anywhen(year1900, year2100);
  for (int i = 0; i < 50; ++i) {
    const int64_t at = anywhen(random);
    offsets[at] = systemOffset(at);
  }
  return offsets;
}

std::vector<std::string> zoneNames() {
  std::vector<std::string> names = {"UTC", "Etc/GMT+12", "EST5EDT"};
  std::ifstream table("/usr/share/zoneinfo/zone1970.tab");
  for (std::string line; std::getline(table, line);) {
    std::istringstream fields(line);
    std::string countries, coordinates, name;
    if (!line.starts_with('#') && fields >> countries >> coordinates >> name) names.push_back(name);
  }
  return names;
}

std::mt19937_64 seededRandom() {
  const auto seed = std::random_device()();
  std::cout << "seed " << seed << "\n";
  return std::mt19937_64(seed);
}

class DateFormatter : public ::testing::Test {
 protected:
  test::TestDevice device;
};

TEST_F(DateFormatter, WritesDayMonthYearAndATwelveHourTime) {
  EXPECT_EQ(ours("en_US", "UTC", 0), "01/01/1970 12:00 AM");
  EXPECT_EQ(ours("en_US", "UTC", 1'700'000'000), "14/11/2023 10:13 PM");
  EXPECT_EQ(ours("en_US", "Europe/Berlin", 1'700'000'000), "14/11/2023 11:13 PM");
  EXPECT_EQ(ours("en_US", "UTC", 1'699'963'199), "14/11/2023 11:59 AM");
  EXPECT_EQ(ours("en_US", "UTC", 1'699'963'200), "14/11/2023 12:00 PM");
  EXPECT_EQ(ours("en_US", "UTC", -1), "31/12/1969 11:59 PM");
}

TEST_F(DateFormatter, WritesTheLocalesOwnWordsDigitsAndCalendar) {
  EXPECT_EQ(ours("ja_JP", "UTC", 0), "01/01/1970 12:00 \u5348\u524D");
  EXPECT_EQ(ours("hi_IN", "UTC", 0), "01/01/1970 12:00 am");
  EXPECT_EQ(ours("mr_IN", "UTC", 0).substr(0, 6), "\u0966\u0967");
  EXPECT_EQ(ours("th_TH", "UTC", 0).substr(0, 10), "01/01/2513");
  EXPECT_EQ(ours("ja_JP@calendar=japanese", "UTC", 1'700'000'000).substr(0, 10), "14/11/0005");
}

TEST_F(DateFormatter, AgreesWithICUInEveryLocaleThatThereIs) {
  auto random = seededRandom();
  std::uniform_int_distribution<int64_t> anywhen(year1900, year2100);
  int32_t count = 0;
  const icu::Locale* locales = icu::Locale::getAvailableLocales(count);
  ASSERT_GE(count, 60);
  for (int32_t i = 0; i < count; ++i) {
    const std::string name = locales[i].getName();
    ICUPeer peer(name);
    for (int repeat = 0; repeat < 4; ++repeat) {
      const int64_t at = anywhen(random);
      ASSERT_EQ(ours(name, "UTC", at), peer.string(at, 0)) << name << " at " << at;
    }
  }
}

TEST_F(DateFormatter, AgreesWithICUOnOtherCalendarsAndNumbers) {
  auto random = seededRandom();
  std::uniform_int_distribution<int64_t> anywhen(year1900, year2100);
  for (const std::string name :
       {"he_IL@calendar=hebrew", "ar_SA@calendar=islamic-umalqura", "fa_IR@calendar=persian",
        "en@calendar=roc", "en@calendar=coptic", "zh@numbers=hanidec", "zh_TW@numbers=hant",
        "he@numbers=hebr", "en@numbers=roman", "ar_EG@numbers=latn", "th_TH@numbers=thai", "xx_XX", ""}) {
    ICUPeer peer(name);
    for (int repeat = 0; repeat < 20; ++repeat) {
      const int64_t at = anywhen(random);
      ASSERT_EQ(ours(name, "UTC", at), peer.string(at, 0)) << name << " at " << at;
    }
  }
}

TEST_F(DateFormatter, FollowsTheSystemsZoneDataOverEveryChangeOfTheClocks) {
  auto random = seededRandom();
  const auto zones = zoneNames();
  ASSERT_GE(zones.size(), 60u);
  ICUPeer english("en_US");
  for (const auto& zone : zones) {
    setProcessZone(zone);
    const auto offsets = expectedOffsets(random);
    setProcessZone("Pacific/Chatham");  // the process's own zone must not matter
    for (const auto& [at, offset] : offsets)
      ASSERT_EQ(ours("en_US", zone, at), english.string(at, offset)) << zone << " at " << at;
  }
}

TEST_F(DateFormatter, CombinesManyLocalesWithManyZones) {
  auto random = seededRandom();
  const auto zones = zoneNames();
  int32_t count = 0;
  const icu::Locale* locales = icu::Locale::getAvailableLocales(count);
  std::uniform_int_distribution<int32_t> anyLocale(0, count - 1);
  std::uniform_int_distribution<size_t> anyZone(0, zones.size() - 1);
  std::uniform_int_distribution<int64_t> anywhen(year1900, year2100);
  std::set<std::string> used;
  for (int repeat = 0; repeat < 300; ++repeat) {
    const std::string locale = locales[anyLocale(random)].getName();
    const auto& zone = zones[anyZone(random)];
    const int64_t at = anywhen(random);
    setProcessZone(zone);
    ASSERT_EQ(ours(locale, zone, at), ICUPeer(locale).string(at, systemOffset(at)))
        << locale << " in " << zone << " at " << at;
    used.insert(zone);
  }
  EXPECT_GE(used.size(), 60u);
}

TEST_F(DateFormatter, DatesFarAwayAreICUsToo) {
  ICUPeer peer("en_US");
  // The end of the Julian calendar and its neighbours, the year 1, five-digit years.
  for (const int64_t at : {-12'219'292'800, -12'219'292'801, -12'212'553'600, -12'212'553'601,
                           -62'135'596'800, 253'402'300'799, 253'402'300'800, 400'000'000'000}) {
    EXPECT_EQ(ours("en_US", "UTC", at), peer.string(at, 0)) << at;
  }
}

TEST_F(DateFormatter, DatesThatNoCalendarReachesAreTheLastThatAllDo) {
  const int64_t last = 86'400LL * 100'000'000;
  const auto limits = std::numeric_limits<int64_t>();
  for (const char* zone : {"UTC", "Asia/Tokyo", "America/New_York"}) {
    EXPECT_EQ(ours("en_US", zone, limits.max()), ours("en_US", zone, last));
    EXPECT_EQ(ours("en_US", zone, limits.min()), ours("en_US", zone, -last));
  }
  EXPECT_EQ(ours("en_US", "UTC", limits.max()), "13/09/275760 12:00 AM");
}

TEST_F(DateFormatter, OtherPatternsAreICUs) {
  for (const char* pattern :
       {"yyyy-MM-dd HH:mm:ss", "EEEE d MMMM y", "h 'o''clock' a", "dd.MM.yyyy", "hh:mm aaaaa"})
    EXPECT_EQ(ours("de_DE", "UTC", 1'700'000'000, pattern),
              ICUPeer("de_DE", pattern).string(1'700'000'000, 0));
}

TEST_F(DateFormatter, AZoneThatTheDatabaseLacksIsUTC) {
  EXPECT_EQ(ours("en_US", "Nowhere/Land", 0), "01/01/1970 12:00 AM");
  EXPECT_EQ(ours("en_US", "", 0), "01/01/1970 12:00 AM");
}

TEST_F(DateFormatter, NoDateGivesNoTextAndNoPatternAnEmptyOne) {
  NSDateFormatter formatter;
  EXPECT_EQ(formatter.stringFromDate(instant(0)), "");
  formatter.setDateFormat(listingPattern);
  EXPECT_EQ(formatter.stringFromDate(std::nullopt), std::nullopt);
}

TEST_F(DateFormatter, WritesTheSameOnManyThreads) {
  device->localeIdentifier = "th_TH";
  const auto formatted = [](std::vector<std::string>& texts) {
    for (int64_t at = 0; at < 200; ++at) {
      NSDateFormatter formatter;
      formatter.setDateFormat(listingPattern);
      texts.push_back(*formatter.stringFromDate(instant(at * 1'000'000)));
    }
  };
  std::vector<std::string> texts[4];
  std::vector<std::thread> threads;
  for (auto& mine : texts) threads.emplace_back(formatted, std::ref(mine));
  for (auto& thread : threads) thread.join();
  ICUPeer peer("th_TH");
  for (const auto& mine : texts)
    for (size_t i = 0; i < mine.size(); ++i)
      ASSERT_EQ(mine[i], peer.string(static_cast<int64_t>(i) * 1'000'000, 0));
}

}  // namespace
}  // namespace quaverly
