#include "Host/Page/PageAnswer.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "Host/Environment/HostWords.h"
#include "Platform/CFNetwork/RequestHead.h"

namespace quaverly::page {
namespace {

struct Part {
  uint64_t first;
  uint64_t length;
};

std::optional<uint64_t> number(std::string_view text) {
  uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

enum class RangeKind { whole, part, outside };

/// "bytes=0-99", "bytes=100-" and "bytes=-100"; whatever else stands there asks for the whole.
RangeKind readRange(std::string_view range, uint64_t length, Part& part) {
  constexpr std::string_view unit = "bytes=";
  if (!range.starts_with(unit)) return RangeKind::whole;
  range.remove_prefix(unit.size());
  const size_t dash = range.find('-');
  if (dash == std::string_view::npos || range.find(',') != std::string_view::npos) return RangeKind::whole;
  const auto from = number(range.substr(0, dash));
  const auto to = number(range.substr(dash + 1));
  if (dash == 0) {
    if (!to) return RangeKind::whole;
    part.length = std::min(*to, length);
    part.first = length - part.length;
    return part.length > 0 ? RangeKind::part : RangeKind::outside;
  }
  if (!from || (!to && dash + 1 < range.size()) || (to && *to < *from)) return RangeKind::whole;
  if (*from >= length) return RangeKind::outside;
  part.first = *from;
  part.length = std::min(to.value_or(length - 1), length - 1) - *from + 1;
  return RangeKind::part;
}

/// Scripts, styles and whatever else only from this server, and nothing written into the pages themselves.
std::string policyFor(std::string_view host) {
  return "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; font-src "
         "'self'; "
         "media-src 'self'; connect-src 'self' ws://" +
         std::string(host) +
         "; frame-src 'self'; frame-ancestors 'none'; base-uri 'none'; form-action 'none'";
}

void addField(std::string& head, std::string_view name, std::string_view value) {
  head.append(name).append(": ").append(value).append("\r\n");
}

}  // namespace

PageAnswer PageAnswer::message(int status, std::string_view title, std::string_view sentence) {
  PageAnswer answer;
  answer.status = status;
  answer.contentType = "text/html; charset=utf-8";
  answer.cacheControl = "no-store";
  const std::string heading = host::inUsersLanguage(title);
  answer.body = NSData("<!doctype html>\n<html lang=\"" + host::usersLanguage() +
                       "\">\n<meta charset=\"utf-8\">\n<title>" + heading + "</title>\n<h1>" + heading +
                       "</h1>\n<p>" + host::inUsersLanguage(sentence) + "</p>\n");
  return answer;
}

PageAnswer PageAnswer::notFound() {
  return message(404, "Not here", "There is nothing at this address.");
}

PageAnswer underConditions(PageAnswer answer, const AnswerConditions& conditions) {
  if (answer.status != 200) return answer;
  if (!answer.entityTag.empty() && namesEntityTag(conditions.ifNoneMatch, answer.entityTag)) {
    answer.status = 304;
    answer.body = {};
    return answer;
  }
  if (!answer.body.slice()) return answer;
  const uint64_t length = answer.body.length();
  answer.moreFields.emplace_back("Accept-Ranges", "bytes");
  Part part{};
  switch (readRange(conditions.range, length, part)) {
    case RangeKind::whole:
      break;
    case RangeKind::part:
      answer.status = 206;
      answer.body = answer.body.subdataWithRange(part.first, part.length);
      answer.moreFields.emplace_back("Content-Range", "bytes " + std::to_string(part.first) + "-" +
                                                          std::to_string(part.first + part.length - 1) + "/" +
                                                          std::to_string(length));
      break;
    case RangeKind::outside:
      answer.status = 416;
      answer.body = {};
      answer.moreFields.emplace_back("Content-Range", "bytes */" + std::to_string(length));
      break;
  }
  return answer;
}

bool namesEntityTag(std::string_view ifNoneMatch, std::string_view entityTag) {
  return ifNoneMatch == "*" ||
         ifNoneMatch.find("\"" + std::string(entityTag) + "\"") != std::string_view::npos;
}

std::string headOf(const PageAnswer& answer, std::string_view host, bool keepsAlive) {
  std::string head =
      "HTTP/1.1 " + std::to_string(answer.status) + " " + standardStatusDescription(answer.status) + "\r\n";
  if (!answer.contentType.empty()) addField(head, "Content-Type", answer.contentType);
  if (answer.status != 304) addField(head, "Content-Length", std::to_string(answer.body.length()));
  if (!answer.entityTag.empty()) addField(head, "ETag", "\"" + answer.entityTag + "\"");
  addField(head, "Cache-Control", answer.cacheControl);
  for (const auto& [name, value] : answer.moreFields) addField(head, name, value);
  addField(head, "Content-Security-Policy",
           answer.contentSecurityPolicy.empty() ? policyFor(host) : answer.contentSecurityPolicy);
  addField(head, "X-Content-Type-Options", "nosniff");
  addField(head, "Referrer-Policy", "no-referrer");
  addField(head, "Cross-Origin-Resource-Policy", "same-origin");
  addField(head, "Cross-Origin-Opener-Policy", "same-origin");
  addField(head, "Connection", keepsAlive ? "keep-alive" : "close");
  return head + "\r\n";
}

}  // namespace quaverly::page
