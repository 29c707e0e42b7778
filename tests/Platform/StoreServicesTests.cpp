#include <gtest/gtest.h>

#include "Platform/Foundation/NSClass.h"
#include "Platform/Foundation/NSFramework.h"
#include "Platform/StoreServices/SSDownloadManager.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

TEST(NSClassFromString, FindsTheStoreClassesOnlyWhileTheirFrameworkIsLoaded) {
  EXPECT_EQ(NSClassFromString("SSDownload"), nullptr);
  ASSERT_TRUE(loadFramework(StoreServicesFramework));
  ASSERT_TRUE(loadFramework(StoreServicesFramework));
  for (const auto* name : {"SSDownload", "SSDownloadAsset", "SSDownloadManager", "SSDownloadMetadata"}) {
    EXPECT_NE(NSClassFromString(name), nullptr) << name;
  }
  unloadFramework(StoreServicesFramework);
  EXPECT_NE(NSClassFromString("SSDownload"), nullptr);
  unloadFramework(StoreServicesFramework);
  EXPECT_EQ(NSClassFromString("SSDownload"), nullptr);
}

TEST(NSClassFromString, ADeviceCanLackAClassOrAFramework) {
  test::TestDevice device;
  device->absentClasses.insert("SSDownload");
  ASSERT_TRUE(loadFramework(StoreServicesFramework));
  EXPECT_EQ(NSClassFromString("SSDownload"), nullptr);
  EXPECT_EQ(allocFromString<SSDownload>("SSDownload").get(), nullptr);
  EXPECT_NE(allocFromString<SSDownloadAsset>("SSDownloadAsset").get(), nullptr);
  unloadFramework(StoreServicesFramework);
  device->absentFrameworks.insert(StoreServicesFramework);
  EXPECT_FALSE(loadFramework(StoreServicesFramework));
}

TEST(SSDownload, ItsCompletionBlockRunsOnceAndIsLetGoOf) {
  auto download = make<SSDownload>();
  int runs = 0;
  const Ref<SSDownload> held = download;
  download->setDownloadHandlerCompletionBlock(nullptr, [held, &runs] { ++runs; });
  EXPECT_EQ(download->retainCount(), 3U);
  download->complete();
  download->complete();
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(download->retainCount(), 2U);
}

TEST(SSDownloadManager, WithoutAServiceDownloadsAreDropped) {
  auto download = make<SSDownload>();
  SSDownloadManager::IPodDownloadManager()->addDownloadsCompletionBlock({download}, nullptr);
  EXPECT_EQ(download->retainCount(), 1U);
}

}  // namespace
}  // namespace quaverly
