#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quaverly {

/// A font's file, opened to measure with. Lengths are in the font's own units, so that a line is shaped once
/// for all sizes. Faces and what they measured are kept. Main thread only.
class FontFace {
 public:
  struct Metrics {
    int64_t ascender;
    int64_t descender;  // negative
    int64_t gap;
    int64_t lineHeight;
  };
  /// What is drawn as one: a character with its marks, a ligature.
  struct Cluster {
    int64_t width;
    bool isSpace;
  };
  using Line = std::vector<Cluster>;

  /// The face of a font's name; never fails, without a file nothing has a glyph.
  static const FontFace& forName(std::string_view fontName);

  ~FontFace();
  FontFace(const FontFace&) = delete;
  FontFace& operator=(const FontFace&) = delete;

  const Metrics& metrics() const { return _metrics; }
  double points(int64_t units, double pointSize) const;
  int64_t units(double points, double pointSize) const;

  /// The text as one line, its clusters in the order in which they are drawn. What the font lacks is one em
  /// wide, for a browser takes it from another font that is not known here.
  std::shared_ptr<const Line> shape(std::string_view text) const;

 private:
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  using Lines = std::unordered_map<std::string, std::shared_ptr<const Line>, Hash, std::equal_to<>>;
  struct Font;

  explicit FontFace(const std::string& file);
  Metrics readMetrics() const;
  Line shapeAnew(std::string_view text) const;

  std::unique_ptr<Font> _font;
  int64_t _unitsPerEm;
  Metrics _metrics;
  mutable Lines _lines;
};

}  // namespace quaverly
