#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace corvane {

/// A listing as it comes, in one piece that grows where it lies: no more memory than its bytes take
/// is in use, however many they are. Lines end in LF alone; a line beyond the bound is left out,
/// and takes no memory. One thread.
class ListingText {
 public:
  static constexpr std::size_t kMaxLine = std::size_t{64} * 1024;

  ListingText() = default;
  ~ListingText();
  ListingText(ListingText&& other) noexcept;
  ListingText& operator=(ListingText&& other) noexcept;

  /// False where this machine has no memory left; errno says so.
  [[nodiscard]] bool Append(std::span<const char> bytes);
  void Clear();

  /// Good until the next call of another kind.
  [[nodiscard]] std::string_view View() const { return {bytes_, size_}; }
  [[nodiscard]] bool IsEmpty() const { return size_ == 0 && dropped_ == 0; }
  /// Whether the last line has no end.
  [[nodiscard]] bool IsOpen() const { return dropping_ || size_ > line_; }
  /// How many lines were left out.
  [[nodiscard]] std::size_t Dropped() const { return dropped_; }

 private:
  [[nodiscard]] bool Grow(std::size_t wanted);
  [[nodiscard]] bool Add(std::string_view piece);
  void EndLine();

  char* bytes_ = nullptr;
  std::size_t size_ = 0;
  std::size_t room_ = 0;
  std::size_t line_ = 0;  // where the last line begins
  std::size_t dropped_ = 0;
  bool dropping_ = false;  // the last line is beyond the bound
};

}  // namespace corvane
