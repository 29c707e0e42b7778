#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "Controllers/QuaverlySettingsController.h"
#include "Host/Screens/TreeDescription.h"
#include "Platform/UIKit/UIApplication.h"
#include "Support/TestDevice.h"

namespace quaverly {
namespace {

using screens::Json;

constexpr const char* grey = "rgb(200 199 204)";

/// The root pane as pages are told of it.
class Rows : public testing::Test {
 protected:
  Rows() {
    _device->mounts.mount(_device.bundlePath, QUAVERLY_SOURCE_DIR "/resources/QuaverlySettings.bundle",
                          MountTable::Access::readOnly);
    _pane->setBundle(NSBundle::bundleWithPath(_device.bundlePath));
    _pane->init();
    const auto window = make<UIWindow>(CGRect{0, 0, 375, 667});
    window->setRootViewController(_pane);
    window->makeKeyAndVisible();
    UIApplication::sharedApplication().layoutIfNeeded();
    _nodes = screens::TreeDescription(_images).describe(*window);
  }
  ~Rows() override { UIApplication::sharedApplication().setKeyWindow(nullptr); }

  /// What is said of the line below a row; null when there is none.
  Json separatorBelow(size_t section, size_t row) const {
    const auto* const table = dynamic_cast<UITableView*>(_pane->view().get());
    const auto cell = table->cellForRowAtIndexPath({section, row});
    return Json::parse(_nodes.at(cell->identity())).value("separator", Json());
  }

  test::TestDevice _device;
  page::PageRoutes _routes;
  screens::ShownImages _images{_routes};
  Ref<QuaverlySettingsController> _pane = make<QuaverlySettingsController>();
  screens::NodeTexts _nodes;
};

TEST_F(Rows, WithinAGroupLinesBeginBelowTheTexts) {
  EXPECT_EQ(separatorBelow(1, 0), Json({59.0, grey}));
  EXPECT_EQ(separatorBelow(2, 0), Json({59.0, grey}));
  EXPECT_EQ(separatorBelow(2, 1), Json({59.0, grey}));
}

TEST_F(Rows, TheLineBelowAGroupGoesFromEdgeToEdge) {
  EXPECT_EQ(separatorBelow(1, 1), Json({0.0, grey}));
  EXPECT_EQ(separatorBelow(2, 2), Json({0.0, grey}));
  EXPECT_EQ(separatorBelow(3, 0), Json({0.0, grey}));
}

TEST_F(Rows, AClearTitleHasNoLine) {
  EXPECT_EQ(separatorBelow(0, 0), Json());
}

}  // namespace
}  // namespace quaverly
