#include "settings/Access.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <type_traits>

namespace corvane {
namespace {

constexpr std::uint32_t kInteger = "LONG"_what;
constexpr std::uint32_t kText = "BYTE"_what;
constexpr std::uint32_t kFrame = "RECT"_what;

void Store(PreferenceSet& set, const char* name, std::string_view bytes, std::uint32_t type,
           const char* complaint) {
  const PREFStatus status =
      PREFSetData(set.Handle(), name, bytes.data(), static_cast<std::int32_t>(bytes.size()), type);
  set.Note(status);
  if (status != 0) std::puts(complaint);
}

std::optional<std::string_view> Find(const PreferenceSet& set, const char* name,
                                     std::uint32_t wanted) {
  const void* data = nullptr;
  std::int32_t size = 0;
  std::uint32_t type = "    "_what;
  const PREFStatus status = PREFGetData(set.Handle(), name, &data, &size, &type);
  if (status != 0 || type != wanted || size < 0) return {};
  return std::string_view(static_cast<const char*>(data), static_cast<std::size_t>(size));
}

// Numbers are stored as they lie in memory.
template <typename Value>
std::string_view BytesOf(const Value& value) {
  static_assert(std::is_trivially_copyable_v<Value>);
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

template <typename Value>
Value Read(std::optional<std::string_view> bytes, Value fallback) {
  if (!bytes.has_value() || bytes->size() != sizeof fallback) return fallback;
  std::memcpy(&fallback, bytes->data(), sizeof fallback);
  return fallback;
}

}  // namespace

void SaveInt32(PreferenceSet& set, const char* name, std::int32_t value) {
  Store(set, name, BytesOf(value), kInteger, "Cannot set message");
}

std::int32_t GetInt32(const PreferenceSet& set, const char* name, std::int32_t fallback) {
  return Read(Find(set, name, kInteger), fallback);
}

void SaveString(PreferenceSet& set, const char* name, std::string_view text) {
  Store(set, name, text, kText, "Cannot set message");
  set.Save();
}

std::string GetString(const PreferenceSet& set, const char* name, std::string_view fallback) {
  return std::string(Find(set, name, kText).value_or(fallback));
}

void SaveWindowSetting(PreferenceSet& set, const char* name, const Rect& frame) {
  Store(set, name, BytesOf(frame), kFrame, "Cannot set frame");
}

Rect GetWindowSetting(const PreferenceSet& set, const char* name, const Rect& fallback) {
  return Read(Find(set, name, kFrame), fallback);
}

}  // namespace corvane
