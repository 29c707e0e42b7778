#pragma once

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

/// A screen of the Settings application. Main thread only.
class PSViewController : public NSObject {
 public:
  /// Sets the screen up, once, before anything else is asked of it. Null when it cannot be; the caller then
  /// lets it go.
  virtual PSViewController* init();

  /// Builds what is seen, when it is first needed.
  virtual void loadView();
};

}  // namespace quaverly
