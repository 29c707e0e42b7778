#include "Platform/CFNetwork/RequestReader.h"

#include <algorithm>

namespace quaverly {
namespace {

constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view headEnd = "\r\n\r\n";

bool isTokenCharacter(char c) {
  const char lowerCase = static_cast<char>(c | 0x20);
  return (lowerCase >= 'a' && lowerCase <= 'z') || (c >= '0' && c <= '9') ||
         (c != '\0' && std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos);
}

/// Whether `text` may be how a request begins: a method, or a part of one.
bool beginsWithMethod(std::string_view text) {
  return std::ranges::all_of(text.substr(0, text.find(' ')), isTokenCharacter);
}

}  // namespace

bool RequestReader::append(std::string_view bytes) {
  _bytes.append(bytes);
  if (_head) return true;
  _isRefused = _isRefused || !readHead();
  return !_isRefused;
}

bool RequestReader::readHead() {
  // The end may lie across the seam of two pieces.
  const size_t end = _bytes.find(headEnd, _checked - std::min(_checked, headEnd.size()));
  const bool isComplete = end != std::string::npos;
  if ((isComplete ? end + headEnd.size() : _bytes.size()) > maximumHeadSize) return false;
  if (!isComplete) return isWellFormedSoFar();
  const auto head = std::string_view(_bytes).substr(0, end + headEnd.size());
  if (!hasProperLineEnds(head)) return false;
  _head = parseRequestHead(head);
  return _head.has_value();
}

bool RequestReader::isWellFormedSoFar() {
  if (!hasProperLineEnds(_bytes)) return false;
  if (_isRequestLineChecked) return true;
  const size_t end = _bytes.find(lineEnd);
  if (end == std::string::npos) return beginsWithMethod(_bytes);
  _isRequestLineChecked = true;
  return parseRequestHead(_bytes.substr(0, end).append(headEnd)).has_value();
}

bool RequestReader::hasProperLineEnds(std::string_view text) {
  for (; _checked < text.size(); ++_checked) {
    const char c = text[_checked];
    if (c == '\n' && (_checked == 0 || text[_checked - 1] != '\r')) return false;
    if (c != '\r') continue;
    if (_checked + 1 == text.size()) return true;  // what follows comes with the next piece
    if (text[_checked + 1] != '\n') return false;
  }
  return true;
}

}  // namespace quaverly
