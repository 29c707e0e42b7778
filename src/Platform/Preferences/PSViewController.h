#pragma once

#include "Platform/UIKit/UIViewController.h"

namespace quaverly {

/// A screen of the Settings application. Main thread only.
class PSViewController : public UIViewController {
 public:
  PSViewController* init() override;
};

}  // namespace quaverly
