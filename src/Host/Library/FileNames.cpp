#include "Host/Library/FileNames.h"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <memory>

namespace quaverly::library {
namespace {

/// What no name may hold somewhere.
constexpr std::u16string_view forbidden = u"/\\:*?\"<>|";

bool isForbidden(UChar32 character) {
  const auto type = u_charType(character);
  return (character < 0x80 &&
          forbidden.find(static_cast<char16_t>(character)) != std::u16string_view::npos) ||
         type == U_CONTROL_CHAR || type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR;
}

bool isSpaceOrDot(UChar32 character) {
  return character == '.' || u_isUWhiteSpace(character);
}

icu::UnicodeString composed(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  // Bytes that are not UTF-8 become replacement characters here.
  const auto unicode = icu::UnicodeString::fromUTF8({text.data(), static_cast<int32_t>(text.size())});
  auto normal = icu::Normalizer2::getNFCInstance(status)->normalize(unicode, status);
  return U_SUCCESS(status) ? normal : unicode;
}

icu::UnicodeString withoutForbidden(const icu::UnicodeString& text) {
  icu::UnicodeString result;
  for (int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
    const UChar32 character = text.char32At(at);
    result.append(isForbidden(character) ? UChar32{'_'} : character);
  }
  return result;
}

void trimEnd(icu::UnicodeString& text) {
  while (!text.isEmpty() && isSpaceOrDot(text.char32At(text.length() - 1))) {
    text.truncate(text.moveIndex32(text.length(), -1));
  }
}

/// Without spaces at the start; a dot there, which would hide the file, becomes "_".
void trimStart(icu::UnicodeString& text) {
  int32_t spaces = 0;
  while (spaces < text.length() && u_isUWhiteSpace(text.char32At(spaces)))
    spaces = text.moveIndex32(spaces, 1);
  text.remove(0, spaces);
  if (text.startsWith(u".")) text.setCharAt(0, u'_');
}

/// CON, NUL, COM1 and the like are devices on some systems, whatever ending follows.
bool isDeviceName(const icu::UnicodeString& name) {
  static const std::array<icu::UnicodeString, 6> words = {u"CON", u"PRN",    u"AUX",
                                                          u"NUL", u"CONIN$", u"CONOUT$"};
  const int32_t dot = name.indexOf(u'.');
  icu::UnicodeString stem(name, 0, dot < 0 ? name.length() : dot);
  trimEnd(stem);
  stem.toUpper(icu::Locale::getRoot());
  if (std::find(words.begin(), words.end(), stem) != words.end()) return true;
  if (stem.length() != 4 || !(stem.startsWith(u"COM") || stem.startsWith(u"LPT"))) return false;
  const char16_t number = stem.charAt(3);
  return (number >= u'0' && number <= u'9') || number == u'\u00b9' || number == u'\u00b2' ||
         number == u'\u00b3';
}

size_t bytesOf(const icu::UnicodeString& text) {
  std::string bytes;
  return text.toUTF8String(bytes).size();
}

/// Cuts `text` to at most `limit` bytes, at a place where a person sees a new character begin.
void shorten(icu::UnicodeString& text, size_t limit) {
  if (bytesOf(text) <= limit) return;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::BreakIterator> characters(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  int32_t end = 0;
  if (U_SUCCESS(status)) {
    characters->setText(text);
    size_t bytes = 0;
    for (int32_t next = characters->next(); next != icu::BreakIterator::DONE; next = characters->next()) {
      bytes += bytesOf(icu::UnicodeString(text, end, next - end));
      if (bytes > limit) break;
      end = next;
    }
  }
  text.truncate(end);
}

/// Everything but the trimming of the end, which counts only where the name ends.
icu::UnicodeString safeStart(std::string_view text) {
  auto name = withoutForbidden(composed(text));
  trimStart(name);
  return name;
}

std::string utf8(const icu::UnicodeString& text) {
  std::string bytes;
  return text.toUTF8String(bytes);
}

}  // namespace

std::string safeFileName(std::string_view text, size_t limit) {
  auto name = safeStart(text);
  trimEnd(name);
  if (isDeviceName(name)) name.insert(0, u'_');
  shorten(name, limit);
  trimEnd(name);
  return utf8(name);
}

std::string safeFileName(std::string_view stem, std::string_view extension, size_t limit) {
  return safeFileName(stem, limit - extension.size() - 1).append(".").append(extension);
}

std::string foldedFileName(std::string_view name) {
  UErrorCode status = U_ZERO_ERROR;
  const auto* folding = icu::Normalizer2::getNFKCCasefoldInstance(status);
  const auto unicode = icu::UnicodeString::fromUTF8({name.data(), static_cast<int32_t>(name.size())});
  const auto folded = U_SUCCESS(status) ? folding->normalize(unicode, status) : unicode;
  return utf8(U_SUCCESS(status) ? folded : unicode);
}

}  // namespace quaverly::library
