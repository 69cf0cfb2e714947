#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kit/Rect.h"
#include "kit/Text.h"

namespace corvane {

/// Writes a four-character code: "CNNT"_what. The first character is the highest byte.
consteval std::uint32_t operator""_what(const char* text, std::size_t length) {
  if (length != 4) throw "a code has four characters";
  std::uint32_t code = 0;
  for (std::size_t i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(text[i]);
  return code;
}

/// A code and ordered, named fields; each field holds one or more values of one type.
///
/// Messages carry requests between threads and are what preference sets consist of. A value type;
/// not locked.
class Message {
 public:
  explicit Message(std::uint32_t code = 0) : what(code) {}

  std::uint32_t what;

  /// Each Add appends one more value under `name`. False, and nothing changed, when the name
  /// already holds values of another type or is longer than 255 bytes.
  bool AddBool(std::string_view name, bool value);
  bool AddInt16(std::string_view name, std::int16_t value);
  bool AddInt32(std::string_view name, std::int32_t value);
  bool AddInt64(std::string_view name, std::int64_t value);
  bool AddDouble(std::string_view name, double value);
  bool AddRect(std::string_view name, const Rect& value);
  bool AddString(std::string_view name, std::string_view value);
  bool AddText(std::string_view name, const Text& value);
  /// Raw bytes under a type code of the caller's.
  bool AddData(std::string_view name, std::uint32_t type, std::string_view bytes);

  /// Each Find returns the value at `index`, or nothing when name, index or type do not match.
  [[nodiscard]] std::optional<bool> FindBool(std::string_view name, std::size_t index = 0) const;
  [[nodiscard]] std::optional<std::int16_t> FindInt16(std::string_view name,
                                                      std::size_t index = 0) const;
  [[nodiscard]] std::optional<std::int32_t> FindInt32(std::string_view name,
                                                      std::size_t index = 0) const;
  [[nodiscard]] std::optional<std::int64_t> FindInt64(std::string_view name,
                                                      std::size_t index = 0) const;
  [[nodiscard]] std::optional<double> FindDouble(std::string_view name,
                                                 std::size_t index = 0) const;
  [[nodiscard]] std::optional<Rect> FindRect(std::string_view name, std::size_t index = 0) const;
  [[nodiscard]] std::optional<std::string> FindString(std::string_view name,
                                                      std::size_t index = 0) const;
  /// A text; one that was added as a string counts as bytes.
  [[nodiscard]] std::optional<Text> FindText(std::string_view name, std::size_t index = 0) const;
  [[nodiscard]] std::optional<std::string_view> FindData(std::string_view name, std::uint32_t type,
                                                         std::size_t index = 0) const;

  /// How many values stand under `name`; 0 when there is no such field.
  [[nodiscard]] std::size_t CountValues(std::string_view name) const;
  /// The field names in the order in which they were first added.
  [[nodiscard]] std::vector<std::string> Names() const;
  /// The type code of a field's values.
  [[nodiscard]] std::optional<std::uint32_t> TypeOf(std::string_view name) const;
  /// Removes a field with all its values; false when there is none.
  bool RemoveName(std::string_view name);
  void MakeEmpty() { fields_.clear(); }

  /// The message as bytes that describe themselves, the same on every machine.
  [[nodiscard]] std::string Flatten() const;
  /// Reads what Flatten wrote; nothing when the bytes are cut, too long or otherwise not a message.
  [[nodiscard]] static std::optional<Message> Unflatten(std::string_view bytes);

  friend bool operator==(const Message&, const Message&) = default;

 private:
  struct Field {
    std::string name;
    std::uint32_t type = 0;
    std::vector<std::string> values;
    friend bool operator==(const Field&, const Field&) = default;
  };

  [[nodiscard]] const Field* Find(std::string_view name) const;

  std::vector<Field> fields_;
};

}  // namespace corvane
