#include "Platform/Foundation/NSError.h"

namespace quaverly {

std::string NSError::localizedDescription() const {
  const auto found = _userInfo.find(NSLocalizedDescriptionKey);
  if (found != _userInfo.end()) return found->second;
  return "The operation couldn’t be completed. (" + _domain + " error " + std::to_string(_code) + ".)";
}

std::string NSError::description() const {
  const auto described = _userInfo.find(NSLocalizedDescriptionKey);
  std::string text = "Error Domain=" + _domain + " Code=" + std::to_string(_code) + " \"";
  text += described == _userInfo.end() ? "(null)" : described->second;
  text += '"';
  if (_userInfo.empty()) return text;
  const char* separator = " UserInfo={";
  for (const auto& [key, value] : _userInfo) {
    text.append(separator).append(key).append("=").append(value);
    separator = ", ";
  }
  return text + "}";
}

}  // namespace quaverly
