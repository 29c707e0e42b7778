#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quaverly {

/// A URL as it was written; its parts are found when asked for.
class NSURL {
 public:
  /// Nothing for an empty text and for one that has bytes no URL may hold (controls, spaces).
  static std::optional<NSURL> URLWithString(std::string_view text);
  /// "file://" and the percent-escaped path.
  static NSURL fileURLWithPath(std::string_view path);

  const std::string& absoluteString() const { return _text; }

  /// The part before the first ":", when that reads as a scheme; lower case.
  std::optional<std::string> scheme() const;
  /// The host without user, password and port; an IPv6 address without its brackets.
  std::optional<std::string> host() const;
  /// The path, percent-decoded, without query, fragment or `;parameter` cut off: a trailing slash and a
  /// parameter make another path. Nothing when an escape in it is broken.
  std::optional<std::string> path() const;
  /// Everything between the first "?" and the fragment, undecoded.
  std::optional<std::string> query() const;

  bool operator==(const NSURL&) const = default;

 private:
  explicit NSURL(std::string text) : _text(std::move(text)) {}

  std::string _text;
};

/// What a download fetches. A value: copying it is the platform's `copy` and `mutableCopy`.
class NSURLRequest {
 public:
  explicit NSURLRequest(NSURL url) : _url(std::move(url)) {}

  const NSURL& URL() const { return _url; }
  void setURL(NSURL url) { _url = std::move(url); }

 private:
  NSURL _url;
};

}  // namespace quaverly
