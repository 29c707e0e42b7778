#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Foundation/NSData.h"

namespace quaverly::page {

/// What a browser gets. A body that a file backs is read as it is sent, and sent in parts where the browser
/// asks for parts.
struct PageAnswer {
  int status = 200;
  std::string contentType{};
  NSData body{};
  /// Whether and how long a browser may keep it; by default it asks each time, with the tag if there is one.
  std::string cacheControl = "no-cache";
  /// Changes with the content, for example a hash; "" for none. Without quotes.
  std::string entityTag{};
  /// In place of the policy that all pages have; "" for that one.
  std::string contentSecurityPolicy{};
  std::vector<std::pair<std::string, std::string>> moreFields{};

  /// A small page of one sentence.
  static PageAnswer message(int status, std::string_view title, std::string_view sentence);
  static PageAnswer notFound();
};

/// What a request says of the part that it wants and of what it has already.
struct AnswerConditions {
  std::string range;        ///< the field's value; "" for none
  std::string ifNoneMatch;  ///< likewise
};

/// The same answer as the conditions want it: without a body when the browser has it already (304), the part
/// asked for (206), or that there is no such part (416). Ranges of several parts get the whole.
PageAnswer underConditions(PageAnswer answer, const AnswerConditions& conditions);

/// Whether an If-None-Match names this tag.
bool namesEntityTag(std::string_view ifNoneMatch, std::string_view entityTag);

/// The head of an answer from the server at `host`, up to and with the empty line.
std::string headOf(const PageAnswer& answer, std::string_view host, bool keepsAlive);

}  // namespace quaverly::page
