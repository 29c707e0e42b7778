#include "Platform/Preferences/PSViewController.h"

namespace quaverly {

PSViewController* PSViewController::init() {
  return this;
}

void PSViewController::loadView() {}

}  // namespace quaverly
