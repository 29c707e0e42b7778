#include "Platform/Preferences/PSViewController.h"

namespace quaverly {

PSViewController* PSViewController::init() {
  UIViewController::init();
  return this;
}

}  // namespace quaverly
