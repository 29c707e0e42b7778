#pragma once

#include <map>
#include <string>

#include "Platform/Foundation/NSObject.h"

namespace quaverly {

inline constexpr const char* NSLocalizedDescriptionKey = "NSLocalizedDescription";

/// What went wrong: a domain, a code in it, and a dictionary of texts.
class NSError : public NSObject {
 public:
  NSError(std::string domain, int code, std::map<std::string, std::string> userInfo)
      : _domain(std::move(domain)), _code(code), _userInfo(std::move(userInfo)) {}

  const std::string& domain() const { return _domain; }
  int code() const { return _code; }
  const std::map<std::string, std::string>& userInfo() const { return _userInfo; }
  std::string localizedDescription() const;

  /// As the platform prints it: Error Domain=… Code=… "…" UserInfo={NSLocalizedDescription=…}
  std::string description() const;

 private:
  std::string _domain;
  int _code;
  std::map<std::string, std::string> _userInfo;
};

}  // namespace quaverly
