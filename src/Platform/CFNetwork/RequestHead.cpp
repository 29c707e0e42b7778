#include "Platform/CFNetwork/RequestHead.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/beast/http/basic_parser.hpp>
#include <boost/beast/http/status.hpp>

namespace quaverly {
namespace {

namespace http = boost::beast::http;
using boost::beast::string_view;
using Error = boost::beast::error_code;

/// Stands in for the target: ours may hold bytes that strict parsers refuse, such as quotes and UTF-8.
constexpr std::string_view standInTarget = " / ";

/// Put before every field's name. The parser acts on what lengths, encodings and upgrades announce about a
/// body; to us they are fields like any other, however large the announced body.
constexpr char namePrefix = 'x';

constexpr std::string_view lineEnd = "\r\n";

class HeadParser : public http::basic_parser<true> {
 public:
  explicit HeadParser(size_t size) { header_limit(static_cast<uint32_t>(size)); }

  std::string method;
  HTTPHeaderFields fields;

 private:
  void on_request_impl(http::verb, string_view name, string_view, int, Error&) override { method = name; }

  void on_field_impl(http::field, string_view prefixedName, string_view value, Error& error) override {
    const auto name = prefixedName.substr(1);
    if (name.empty()) error = http::error::bad_field;
    const auto [field, isNew] = fields.try_emplace(name, value);
    if (!isNew) field->second.append(", ").append(value);
  }

  // Bodies are nobody's business here.
  void on_response_impl(int, string_view, int, Error&) override {}
  void on_header_impl(Error&) override {}
  void on_body_init_impl(const boost::optional<uint64_t>&, Error&) override {}
  size_t on_body_impl(string_view body, Error&) override { return body.size(); }
  void on_chunk_header_impl(uint64_t, string_view, Error&) override {}
  size_t on_chunk_body_impl(uint64_t, string_view body, Error&) override { return body.size(); }
  void on_finish_impl(Error&) override {}
};

bool isTarget(std::string_view text) {
  const auto isVisible = [](char c) { return static_cast<unsigned char>(c) > ' ' && c != 0x7F; };
  return !text.empty() && std::ranges::all_of(text, isVisible);
}

/// Cuts a line, without its end, off the front of `text`.
std::string_view takeLine(std::string_view& text) {
  const size_t end = std::min(text.find(lineEnd), text.size());
  const auto line = text.substr(0, end);
  text.remove_prefix(std::min(end + lineEnd.size(), text.size()));
  return line;
}

/// The field lines as the parser is to see them. A line that begins with white space continues a value.
std::string withPrefixedNames(std::string_view lines) {
  std::string result;
  result.reserve(lines.size() + lines.size() / 8);
  while (!lines.empty()) {
    const auto line = takeLine(lines);
    const bool isField = !line.empty() && line[0] != ' ' && line[0] != '\t';
    if (isField) result += namePrefix;
    result.append(line).append(lineEnd);
  }
  return result;
}

}  // namespace

std::optional<RequestHead> parseRequestHead(std::string_view head) {
  const auto requestLine = takeLine(head);
  const size_t methodEnd = requestLine.find(' ');
  const size_t targetEnd = requestLine.rfind(' ');
  if (methodEnd == std::string_view::npos || methodEnd == targetEnd) return std::nullopt;
  const auto target = requestLine.substr(methodEnd + 1, targetEnd - methodEnd - 1);
  if (!isTarget(target)) return std::nullopt;

  std::string text(requestLine.substr(0, methodEnd));
  text.append(standInTarget).append(requestLine.substr(targetEnd + 1)).append(lineEnd);
  text += withPrefixedNames(head);
  HeadParser parser(text.size());
  Error error;
  parser.put(boost::asio::buffer(text), error);
  if (error || !parser.is_header_done()) return std::nullopt;
  return RequestHead{std::move(parser.method), std::string(target), std::move(parser.fields)};
}

std::string standardStatusDescription(int statusCode) {
  return http::obsolete_reason(http::int_to_status(static_cast<unsigned>(statusCode)));
}

}  // namespace quaverly
