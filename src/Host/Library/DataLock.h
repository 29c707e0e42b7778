#pragma once

#include <optional>
#include <string>

#include "Host/Library/FileDescriptor.h"
#include "Host/Library/Result.h"

namespace quaverly::library {

/// What those are told who wait for the turn to file.
extern const char* const anotherHasTheTurn;

/// A turn on a data folder, which one service at a time has, in whatever program. Given back when
/// this object goes, or its program.
class DataLock {
 public:
  enum class Turn {
    filing,   ///< to work on the folder's downloads
    serving,  ///< to be the instance that other programs hand theirs to
  };
  /// The turn, or nothing while another one has it. Makes the folder where it is missing. Never waits.
  static Result<std::optional<DataLock>> tryTake(const std::string& dataFolder, Turn turn = Turn::filing);

 private:
  explicit DataLock(FileDescriptor file) : _file(std::move(file)) {}

  FileDescriptor _file;
};

}  // namespace quaverly::library
