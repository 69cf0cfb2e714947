#include "ftp/ListingText.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace corvane {

ListingText::~ListingText() {
  if (bytes_ != nullptr) ::munmap(bytes_, room_);
}

ListingText::ListingText(ListingText&& other) noexcept {
  *this = std::move(other);
}

ListingText& ListingText::operator=(ListingText&& other) noexcept {
  std::swap(bytes_, other.bytes_);
  std::swap(size_, other.size_);
  std::swap(room_, other.room_);
  std::swap(line_, other.line_);
  std::swap(dropped_, other.dropped_);
  std::swap(dropping_, other.dropping_);
  return *this;
}

void ListingText::Clear() {
  *this = ListingText();
}

bool ListingText::Append(std::span<const char> bytes) {
  std::string_view rest(bytes.data(), bytes.size());
  while (!rest.empty()) {
    const std::string_view piece = rest.substr(0, rest.find('\n'));
    if (!Add(piece)) return false;
    const bool ends = piece.size() < rest.size();
    if (ends) EndLine();
    rest.remove_prefix(piece.size() + (ends ? 1 : 0));
  }
  return true;
}

// There is always room for the line's end.
bool ListingText::Add(std::string_view piece) {
  if (dropping_) return true;
  if (size_ - line_ + piece.size() > kMaxLine) {
    dropping_ = true;
    ++dropped_;
    size_ = line_;
    return true;
  }
  if (size_ + piece.size() + 1 > room_ && !Grow(size_ + piece.size() + 1)) return false;
  std::memcpy(bytes_ + size_, piece.data(), piece.size());
  size_ += piece.size();
  return true;
}

void ListingText::EndLine() {
  if (!std::exchange(dropping_, false)) {
    if (size_ > line_ && bytes_[size_ - 1] == '\r') --size_;
    bytes_[size_++] = '\n';
  }
  line_ = size_;
}

// Pages that were never written to are no memory in use, and those that were move without a copy.
bool ListingText::Grow(std::size_t wanted) {
  constexpr std::size_t kFirst = std::size_t{64} * 1024;
  std::size_t room = std::max(room_ * 2, kFirst);
  while (room < wanted) room *= 2;
  void* const grown = bytes_ == nullptr ? ::mmap(nullptr, room, PROT_READ | PROT_WRITE,
                                                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)
                                        : ::mremap(bytes_, room_, room, MREMAP_MAYMOVE);
  if (grown == MAP_FAILED) return false;
  bytes_ = static_cast<char*>(grown);
  room_ = room;
  return true;
}

}  // namespace corvane
