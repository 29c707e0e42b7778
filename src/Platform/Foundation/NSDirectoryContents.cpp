#include "Platform/Foundation/NSDirectoryContents.h"

#include "Platform/Foundation/OpenFolder.h"

namespace quaverly {

NSDirectoryContents::Iterator& NSDirectoryContents::Iterator::operator++() {
  _name += std::string_view(_name).size() + 1;
  return *this;
}

NSDirectoryContents::Iterator NSDirectoryContents::Iterator::operator++(int) {
  const Iterator before = *this;
  ++*this;
  return before;
}

NSDirectoryContents::NSDirectoryContents(std::shared_ptr<const OpenFolder> folder)
    : _folder(std::move(folder)) {}

NSDirectoryContents::Iterator NSDirectoryContents::begin() const {
  return Iterator(_folder->names().data());
}

NSDirectoryContents::Iterator NSDirectoryContents::end() const {
  return Iterator(_folder->names().data() + _folder->names().size());
}

size_t NSDirectoryContents::size() const {
  return _folder->count();
}

}  // namespace quaverly
