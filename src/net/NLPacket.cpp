#include "net/NLPacket.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "net/NLException.h"

namespace corvane {

NLPacket::NLPacket(unsigned long initialSize) {
  if (initialSize != 0) p_growToHold(initialSize);
}

template <typename Value>
void NLPacket::append(Value value) {
  insert(static_cast<const void*>(&value), sizeof value);
}

template <typename Value>
Value NLPacket::take(const char* label) {
  Value value{};
  verify(sizeof value, label);
  std::memcpy(&value, data_.get() + readPosition_, sizeof value);
  readPosition_ += sizeof value;
  return value;
}

void NLPacket::verify(unsigned long count, const char* label) const {
  if (!p_verifySizeRemaining(count)) throw NLException(label, "Attempted read past end of packet");
}

void NLPacket::insert(char value) {
  append(value);
}
void NLPacket::insert(unsigned char value) {
  append(value);
}
void NLPacket::insert(short value) {
  insert(static_cast<unsigned short>(value));
}
void NLPacket::insert(unsigned short value) {
  append(htons(value));
}
void NLPacket::insert(int value) {
  insert(static_cast<unsigned int>(value));
}
void NLPacket::insert(unsigned int value) {
  append(htonl(value));
}
void NLPacket::insert(long value) {
  insert(static_cast<unsigned int>(value));
}
void NLPacket::insert(unsigned long value) {
  insert(static_cast<unsigned int>(value));
}
void NLPacket::insert(float value) {
  append(value);
}
void NLPacket::insert(double value) {
  append(value);
}

void NLPacket::insert(const char* text) {
  if (text != nullptr) insert(static_cast<const void*>(text), std::strlen(text) + 1);
}

void NLPacket::insert(const void* bytes, unsigned long length) {
  if (bytes == nullptr || length == 0) return;
  p_growToHold(length);
  std::memcpy(data_.get() + size_, bytes, length);
  size_ += static_cast<std::uint32_t>(length);
}

void NLPacket::remove(char& out) {
  out = take<char>("NLPacket::remove(char)");
}

void NLPacket::remove(unsigned char& out) {
  out = take<unsigned char>("NLPacket::remove(uchar)");
}

void NLPacket::remove(short& out) {
  out = static_cast<short>(ntohs(take<std::uint16_t>("NLPacket::remove(short)")));
}

void NLPacket::remove(unsigned short& out) {
  out = ntohs(take<std::uint16_t>("NLPacket::remove(ushort)"));
}

void NLPacket::remove(int& out) {
  out = static_cast<int>(ntohl(take<std::uint32_t>("NLPacket::remove(int)")));
}

void NLPacket::remove(unsigned int& out) {
  out = ntohl(take<std::uint32_t>("NLPacket::remove(uint)"));
}

void NLPacket::remove(long& out) {
  out = static_cast<std::int32_t>(ntohl(take<std::uint32_t>("NLPacket::remove(long)")));
}

void NLPacket::remove(unsigned long& out) {
  out = ntohl(take<std::uint32_t>("NLPacket::remove(ulong)"));
}

void NLPacket::remove(float& out) {
  out = take<float>("NLPacket::remove(float)");
}

void NLPacket::remove(double& out) {
  out = take<double>("NLPacket::remove(double)");
}

void NLPacket::remove(char* buffer, std::size_t maximum) {
  const std::size_t left = size_ - readPosition_;
  const char* text = data_.get() + readPosition_;
  const std::size_t length = left != 0 ? ::strnlen(text, left) : 0;
  // Without its terminator a string counts as longer than what is left.
  const bool terminated = length < left;
  if (!terminated) verify(maximum, "NLPacket::remove(char *, size_t)");
  if (maximum != 0) {
    std::memset(buffer, 0, maximum);
    std::copy_n(text, std::min(length, maximum - 1), buffer);
  }
  readPosition_ += static_cast<std::uint32_t>(terminated ? length + 1 : left);
}

void NLPacket::remove(void* buffer, std::size_t length) {
  verify(length, "NLPacket::remove(void *, size_t)");
  if (length == 0) return;
  std::memcpy(buffer, data_.get() + readPosition_, length);
  readPosition_ += static_cast<std::uint32_t>(length);
}

void NLPacket::p_growToHold(unsigned long more) {
  // Exactly enough is not enough: the packet grows then, too.
  if (capacity_ - size_ > more) return;
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint32_t>::max();
  const bool possible =
      more <= kLargest - kGrowBy - std::min<std::uint64_t>(capacity_, kLargest - kGrowBy);
  const std::uint64_t grown = possible ? capacity_ + more + kGrowBy : 0;
  std::unique_ptr<char[]> larger(possible ? new (std::nothrow) char[grown]() : nullptr);
  if (!larger) throw NLException("NLPacket::p_growToHold", "Out of memory");
  if (size_ != 0) std::memcpy(larger.get(), data_.get(), size_);
  data_ = std::move(larger);
  capacity_ = static_cast<std::uint32_t>(grown);
}

bool NLPacket::p_verifySizeRemaining(unsigned long count) const {
  return size_ - readPosition_ >= count;
}

}  // namespace corvane
