#include "Host/Library/SystemFailure.h"

#include <cerrno>
#include <system_error>

namespace quaverly::library {
namespace {

std::string explanation(int errorNumber) {
  switch (errorNumber) {
    case ENOSPC:
      return "the disk is full";
    case EDQUOT:
      return "your share of the disk is used up";
    case EROFS:
      return "the disk is read-only";
    case EACCES:
    case EPERM:
      return "there is no permission";
    case ENOENT:
      return "it is not there";
    case ENOTDIR:
      return "a file is in the way of a folder";
    case EISDIR:
      return "it is a folder";
    case ENAMETOOLONG:
      return "the name is too long";
    case EIO:
      return "the disk reports an error";
    case EMFILE:
    case ENFILE:
      return "too many files are open";
    default:
      return std::generic_category().message(errorNumber);
  }
}

}  // namespace

Failure systemFailure(const std::string& what, int errorNumber) {
  return {what + ": " + explanation(errorNumber) + "."};
}

}  // namespace quaverly::library
