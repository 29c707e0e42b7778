#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <string_view>

namespace quaverly {

class OpenFolder;

/// The names in a folder, in the file system's order. Keeps the folder open for questions about its entries;
/// the names are bytes and live as long as the contents. Belongs to the thread that asked for it.
class NSDirectoryContents {
 public:
  class Iterator {
   public:
    using value_type = std::string_view;
    using difference_type = std::ptrdiff_t;

    explicit Iterator(const char* name = nullptr) : _name(name) {}
    std::string_view operator*() const { return _name; }
    Iterator& operator++();
    Iterator operator++(int);
    bool operator==(const Iterator&) const = default;

   private:
    const char* _name;  // ends with a NUL, behind which the next one begins
  };

  explicit NSDirectoryContents(std::shared_ptr<const OpenFolder> folder);

  Iterator begin() const;
  Iterator end() const;
  size_t size() const;

 private:
  std::shared_ptr<const OpenFolder> _folder;
};

}  // namespace quaverly
