#include "Host/Library/ArtworkStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "Support/TestDevice.h"

namespace quaverly::library {
namespace {

using Kind = ArtworkChange::Kind;
using testing::HasSubstr;

const std::string jpeg = "\xff\xd8\xff\xe0 picture";
const std::string png = "\x89PNG\r\n\x1a\n picture";

struct Case {
  const char* name;
  std::optional<std::string> url;
  Kind kind;
};

TEST(ArtworkOf, DependsOnTheFileThatIsNamed) {
  test::TestDevice device;
  device.temporary().write("tmp/a.jpg", jpeg);
  device.temporary().write("tmp/b c.png", png);
  device.temporary().write("tmp/empty.jpg", "");
  device.temporary().write("tmp/strange.jpg", "GIF89a");
  const std::string start = "file://localhost/private/var/mobile/Media/Quaverly/tmp/";
  const Case cases[] = {
      {"none", std::nullopt, Kind::remove},
      {"no text", "", Kind::remove},
      {"JPEG", start + "a.jpg", Kind::replace},
      {"PNG with a space", start + "b%20c.png", Kind::replace},
      {"without a host", "file:///var/mobile/Media/Quaverly/tmp/a.jpg", Kind::replace},
      {"missing", start + "missing.jpg", Kind::keep},
      {"empty", start + "empty.jpg", Kind::keep},
      {"no picture", start + "strange.jpg", Kind::keep},
      {"a folder", start, Kind::keep},
      {"outside the mounts", "file:///etc/hostname", Kind::keep},
      {"not a file", "http://localhost/a.jpg", Kind::keep},
      {"no URL", "file://a b", Kind::keep},
  };
  for (const auto& [name, url, kind] : cases) {
    DownloadMetadata metadata;
    metadata.fullSizeImageURL = url;
    EXPECT_EQ(artworkOf(metadata).kind, kind) << name;
  }
}

class ArtworkStoreTest : public testing::Test {
 protected:
  test::TemporaryFolder _folder;
  ArtworkStore _store{_folder.path()};
};

TEST_F(ArtworkStoreTest, KeepsOneCopyOfAPicture) {
  const auto name = *_store.keep(NSData(jpeg));
  EXPECT_EQ(*_store.keep(NSData(jpeg)), name);
  EXPECT_NE(*_store.keep(NSData(png)), name);
  EXPECT_EQ(_store.names().size(), 2U);
  EXPECT_EQ(_store.image(name)->text(), jpeg);
  _store.remove(name);
  EXPECT_EQ(_store.names().size(), 1U);
}

TEST_F(ArtworkStoreTest, ACopyThatIsDamagedIsNotUsedAndMadeAgain) {
  const auto name = *_store.keep(NSData(jpeg));
  for (const std::string damaged : {"", "\xff\xd8\xff\xe0 pict"}) {
    _folder.write("artwork/" + name, damaged);
    const auto image = _store.image(name);
    ASSERT_FALSE(image);
    EXPECT_THAT(image.failure().reason, HasSubstr("cover was lost"));
    EXPECT_EQ(*_store.keep(NSData(jpeg)), name);
    EXPECT_EQ(_store.image(name)->text(), jpeg);
  }
}

TEST_F(ArtworkStoreTest, ALostCopyIsAFailureOfItsDownload) {
  DownloadRecord record;
  EXPECT_EQ(artworkOf(record, _store)->kind, Kind::remove);
  record.artworkKind = Kind::keep;
  EXPECT_EQ(artworkOf(record, _store)->kind, Kind::keep);
  record.artworkKind = Kind::replace;
  record.artwork = *_store.keep(NSData(jpeg));
  EXPECT_EQ(artworkOf(record, _store)->image.text(), jpeg);
  _store.remove(record.artwork);
  EXPECT_FALSE(artworkOf(record, _store));
}

TEST_F(ArtworkStoreTest, LeavesNothingHalfWritten) {
  _folder.write("artwork", "a file in the way");
  EXPECT_FALSE(_store.keep(NSData(jpeg)));
  EXPECT_THAT(_store.names(), testing::IsEmpty());
}

}  // namespace
}  // namespace quaverly::library
