#include "Platform/UIKit/FontFace.h"

#include <hb.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <span>

#include "Platform/UIKit/UIFont.h"

namespace quaverly {
namespace {

/// Enough for the screens; a folder of any length that scrolls past must not stay.
constexpr size_t mostLines = 4096;
constexpr size_t longestLine = 1024;

/// Wider than any screen, and still far from overflow.
constexpr double widest = 1e12;

using Buffer = std::unique_ptr<hb_buffer_t, decltype([](hb_buffer_t* buffer) { hb_buffer_destroy(buffer); })>;

Buffer makeBuffer(std::string_view text) {
  Buffer buffer(hb_buffer_create());
  hb_buffer_add_utf8(buffer.get(), text.data(), static_cast<int>(text.size()), 0, -1);
  hb_buffer_guess_segment_properties(buffer.get());
  return buffer;
}

/// How many of the glyphs from `at` on belong to one cluster.
size_t clusterLength(std::span<const hb_glyph_info_t> glyphs, size_t at) {
  size_t end = at + 1;
  while (end < glyphs.size() && glyphs[end].cluster == glyphs[at].cluster) ++end;
  return end - at;
}

bool isMissing(const hb_glyph_info_t& glyph) {
  return glyph.codepoint == 0;
}

int64_t advanceOf(std::span<const hb_glyph_position_t> positions) {
  int64_t width = 0;
  for (const auto& position : positions) width += position.x_advance;
  return width;
}

}  // namespace

struct FontFace::Font {
  hb_font_t* font;

  explicit Font(const std::string& file) {
    hb_blob_t* const bytes = hb_blob_create_from_file(file.c_str());
    hb_face_t* const face = hb_face_create(bytes, 0);
    font = hb_font_create(face);
    hb_face_destroy(face);
    hb_blob_destroy(bytes);
  }
  ~Font() { hb_font_destroy(font); }
  Font(const Font&) = delete;
  Font& operator=(const Font&) = delete;
};

const FontFace& FontFace::forName(std::string_view fontName) {
  static std::map<std::string, std::unique_ptr<const FontFace>> faces;  // by file
  const std::string file = UIFont::fileForName(fontName).value_or("");
  auto& face = faces[file];
  if (!face) face.reset(new FontFace(file));
  return *face;
}

FontFace::FontFace(const std::string& file)
    : _font(std::make_unique<Font>(file)),
      _unitsPerEm(hb_face_get_upem(hb_font_get_face(_font->font))),
      _metrics(readMetrics()) {}

FontFace::~FontFace() = default;

FontFace::Metrics FontFace::readMetrics() const {
  hb_font_extents_t extents{};
  if (!hb_font_get_h_extents(_font->font, &extents)) return {_unitsPerEm, 0, 0, _unitsPerEm};
  return {extents.ascender, extents.descender, extents.line_gap,
          int64_t{extents.ascender} - extents.descender + extents.line_gap};
}

double FontFace::points(int64_t units, double pointSize) const {
  return static_cast<double>(units) * pointSize / static_cast<double>(_unitsPerEm);
}

int64_t FontFace::units(double points, double pointSize) const {
  const double units = std::floor(points * static_cast<double>(_unitsPerEm) / pointSize);
  return static_cast<int64_t>(std::clamp(units, 0.0, widest));
}

std::shared_ptr<const FontFace::Line> FontFace::shape(std::string_view text) const {
  if (const auto known = _lines.find(text); known != _lines.end()) return known->second;
  auto line = std::make_shared<const Line>(shapeAnew(text));
  if (text.size() > longestLine) return line;
  if (_lines.size() >= mostLines) _lines.clear();
  _lines.emplace(text, line);
  return line;
}

FontFace::Line FontFace::shapeAnew(std::string_view text) const {
  const Buffer buffer = makeBuffer(text);
  hb_shape(_font->font, buffer.get(), nullptr, 0);
  const size_t count = hb_buffer_get_length(buffer.get());
  const std::span glyphs(hb_buffer_get_glyph_infos(buffer.get(), nullptr), count);
  const std::span positions(hb_buffer_get_glyph_positions(buffer.get(), nullptr), count);
  Line line;
  for (size_t at = 0; at < glyphs.size();) {
    const size_t length = clusterLength(glyphs, at);
    const bool lacks = std::ranges::any_of(glyphs.subspan(at, length), isMissing);
    line.push_back(
        {lacks ? _unitsPerEm : advanceOf(positions.subspan(at, length)), text[glyphs[at].cluster] == ' '});
    at += length;
  }
  return line;
}

}  // namespace quaverly
