#include "Platform/UIKit/TextMeasuring.h"

#include <cmath>
#include <limits>
#include <string>

#include "Platform/UIKit/FontFace.h"

namespace quaverly {
namespace {

constexpr int64_t unlimited = std::numeric_limits<int64_t>::max() / 4;

/// Puts clusters on lines and keeps the number and the greatest width of these.
class Lines {
 public:
  Lines(int64_t limit, size_t maxLines) : _limit(limit), _maxLines(maxLines) {}

  void addParagraph(const FontFace::Line& clusters) {
    for (const auto& cluster : clusters) {
      if (cluster.isSpace) {
        addSpace(cluster.width);
      } else {
        addToWord(cluster.width);
      }
    }
    endLine(std::min(_words + _spaces + _word, _limit));
  }

  size_t count() const { return _count; }
  int64_t widest() const { return _widest; }

 private:
  void addSpace(int64_t width) {
    if (_word > 0) {
      _words += _spaces + _word;
      _spaces = _word = 0;
    }
    _spaces += width;
  }

  void addToWord(int64_t width) {
    if (_words + _spaces > 0 && _words + _spaces + _word + width > _limit) {
      const int64_t word = _word;
      endLine(_words);
      _word = word;
    }
    if (_word > 0 && _word + width > _limit) endLine(_word);
    _word += width;
  }

  void endLine(int64_t width) {
    _words = _spaces = _word = 0;
    if (_maxLines != 0 && _count == _maxLines) return;
    ++_count;
    _widest = std::max(_widest, width);
  }

  int64_t _limit;
  size_t _maxLines;
  size_t _count = 0;
  int64_t _widest = 0;
  // The line that is being filled: whole words, the spaces behind them, the word that is not complete.
  int64_t _words = 0;
  int64_t _spaces = 0;
  int64_t _word = 0;
};

/// The next line of the text as it is written, taken off its front together with what ends it.
std::string_view takeParagraph(std::string_view& text) {
  const size_t end = text.find_first_of("\r\n");
  const auto paragraph = text.substr(0, end);
  if (end == std::string_view::npos) {
    text = {};
  } else {
    text.remove_prefix(end + (text.substr(end).starts_with("\r\n") ? 2 : 1));
  }
  return paragraph;
}

bool isBlank(char c) {
  return c == '\n' || c == '\r' || c == '\t';
}

std::shared_ptr<const FontFace::Line> shaped(const FontFace& face, std::string_view text) {
  if (std::ranges::none_of(text, isBlank)) return face.shape(text);
  std::string spaced(text);
  std::ranges::replace_if(spaced, isBlank, ' ');
  return face.shape(spaced);
}

CGSize sizeOf(const Lines& lines, const FontFace& face, const UIFont& font) {
  const auto height = static_cast<int64_t>(lines.count()) * face.metrics().lineHeight;
  return {std::ceil(face.points(lines.widest(), font.pointSize())),
          std::ceil(face.points(height, font.pointSize()))};
}

}  // namespace

CGSize sizeOfText(std::string_view text, const UIFont& font) {
  if (text.empty()) return {};
  const auto& face = FontFace::forName(font.fontName());
  Lines lines(unlimited, 1);
  lines.addParagraph(*shaped(face, text));
  return sizeOf(lines, face, font);
}

CGSize sizeOfTextInWidth(std::string_view text, const UIFont& font, double width, size_t maxLines) {
  if (text.empty()) return {};
  const auto& face = FontFace::forName(font.fontName());
  Lines lines(width > 0 ? face.units(width, font.pointSize()) : unlimited, maxLines);
  const bool endsOpen = text.ends_with('\n') || text.ends_with('\r');
  while (!text.empty()) lines.addParagraph(*shaped(face, takeParagraph(text)));
  if (endsOpen) lines.addParagraph({});
  return sizeOf(lines, face, font);
}

}  // namespace quaverly
