#pragma once

#include <optional>
#include <string>

#include "Host/Library/FileDescriptor.h"
#include "Host/Library/Result.h"

namespace quaverly::library {

/// The turn to work on a data folder, which one service at a time has, in whatever program. Given back when
/// this object goes, or its program.
class DataLock {
 public:
  /// The turn, or nothing while another one has it. Never waits.
  static Result<std::optional<DataLock>> tryTake(const std::string& dataFolder);

 private:
  explicit DataLock(FileDescriptor file) : _file(std::move(file)) {}

  FileDescriptor _file;
};

}  // namespace quaverly::library
