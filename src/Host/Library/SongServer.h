#pragma once

#include <string>
#include <variant>

#include "Host/Library/Result.h"

namespace quaverly::library {

/// The server that songs are fetched from, as the download service sees it. Main thread.
class SongServer {
 public:
  struct Running {};
  /// It cannot run now, but somebody gives up its port soon; `why` is a sentence for people.
  struct Wait {
    std::string why;
  };
  using Readiness = std::variant<Running, Wait, Failure>;

  virtual ~SongServer() = default;
  /// Starts the server when it is idle, and says whether it runs.
  virtual Readiness makeReady() = 0;
};

/// The process's own import server on port 8080. A program of ours that holds the port is waited for; any
/// other makes the download fail, and the reason says which.
class ImportServer : public SongServer {
 public:
  Readiness makeReady() override;
};

}  // namespace quaverly::library
