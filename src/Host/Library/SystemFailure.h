#pragma once

#include <string>

#include "Host/Library/Result.h"

namespace quaverly::library {

/// "`what`: " and an `errno` value as a sentence for people, for example
/// "The song cannot be stored in /music: the disk is full."
Failure systemFailure(const std::string& what, int errorNumber);

}  // namespace quaverly::library
