#include "kit/Message.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <set>
#include <type_traits>

namespace corvane {
namespace {

constexpr std::uint32_t kBool = "BOOL"_what;
constexpr std::uint32_t kInt16 = "SHRT"_what;
constexpr std::uint32_t kInt32 = "LONG"_what;
constexpr std::uint32_t kInt64 = "LLNG"_what;
constexpr std::uint32_t kDouble = "DBLE"_what;
constexpr std::uint32_t kRect = "RECT"_what;
constexpr std::uint32_t kString = "CSTR"_what;
constexpr std::uint32_t kText = "TEXT"_what;

// The first bytes of a flattened message; the last of them is the version of the form.
constexpr std::string_view kMagic = "CVM1";
constexpr std::size_t kNameLimit = 255;

// Integers are little-endian in every flattened form.
template <typename Integer>
std::string Encode(Integer value) {
  auto bits = static_cast<std::make_unsigned_t<Integer>>(value);
  std::string bytes;
  for (std::size_t i = 0; i < sizeof bits; ++i) {
    bytes += static_cast<char>(static_cast<std::uint64_t>(bits) >> (8 * i) & 0xFF);
  }
  return bytes;
}

template <typename Integer>
Integer Decode(std::string_view bytes) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < sizeof(Integer); ++i) {
    bits |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
  }
  return static_cast<Integer>(bits);
}

template <typename Integer>
std::optional<Integer> DecodeWhole(std::optional<std::string_view> bytes) {
  if (!bytes || bytes->size() != sizeof(Integer)) return std::nullopt;
  return Decode<Integer>(*bytes);
}

// Takes pieces from the front of a flattened message; every piece is checked against what is left.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  [[nodiscard]] bool AtEnd() const { return rest_.empty(); }

  std::optional<std::string_view> Bytes(std::size_t length) {
    if (length > rest_.size()) return std::nullopt;
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return taken;
  }

  std::optional<std::uint32_t> Number() {
    return DecodeWhole<std::uint32_t>(Bytes(sizeof(std::uint32_t)));
  }

  std::optional<std::string_view> Counted() {
    const auto length = Number();
    return length ? Bytes(*length) : std::nullopt;
  }

 private:
  std::string_view rest_;
};

void AppendCounted(std::string& out, std::string_view bytes) {
  out += Encode(static_cast<std::uint32_t>(bytes.size()));
  out += bytes;
}

}  // namespace

bool Message::AddBool(std::string_view name, bool value) {
  return AddData(name, kBool, value ? std::string_view("\1", 1) : std::string_view("\0", 1));
}

bool Message::AddInt16(std::string_view name, std::int16_t value) {
  return AddData(name, kInt16, Encode(value));
}

bool Message::AddInt32(std::string_view name, std::int32_t value) {
  return AddData(name, kInt32, Encode(value));
}

bool Message::AddInt64(std::string_view name, std::int64_t value) {
  return AddData(name, kInt64, Encode(value));
}

bool Message::AddDouble(std::string_view name, double value) {
  return AddData(name, kDouble, Encode(std::bit_cast<std::uint64_t>(value)));
}

bool Message::AddRect(std::string_view name, const Rect& value) {
  std::string bytes;
  for (const float edge : {value.left, value.top, value.right, value.bottom}) {
    bytes += Encode(std::bit_cast<std::uint32_t>(edge));
  }
  return AddData(name, kRect, bytes);
}

bool Message::AddString(std::string_view name, std::string_view value) {
  return AddData(name, kString, value);
}

bool Message::AddText(std::string_view name, const Text& value) {
  return AddData(name, kText, value.Flatten());
}

bool Message::AddData(std::string_view name, std::uint32_t type, std::string_view bytes) {
  if (name.size() > kNameLimit) return false;
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) return false;
  const auto field = std::find_if(fields_.begin(), fields_.end(),
                                  [name](const Field& each) { return each.name == name; });
  if (field == fields_.end()) {
    fields_.push_back({std::string(name), type, {std::string(bytes)}});
    return true;
  }
  if (field->type != type) return false;
  field->values.emplace_back(bytes);
  return true;
}

std::optional<Text> Message::FindText(std::string_view name, std::size_t index) const {
  if (const auto bytes = FindData(name, kText, index)) return Text::Unflatten(*bytes);
  const auto bytes = FindData(name, kString, index);
  return bytes ? std::optional(Text::Raw(*bytes)) : std::nullopt;
}

std::optional<bool> Message::FindBool(std::string_view name, std::size_t index) const {
  const auto value = DecodeWhole<std::uint8_t>(FindData(name, kBool, index));
  return value ? std::optional<bool>(*value != 0) : std::nullopt;
}

std::optional<std::int16_t> Message::FindInt16(std::string_view name, std::size_t index) const {
  return DecodeWhole<std::int16_t>(FindData(name, kInt16, index));
}

std::optional<std::int32_t> Message::FindInt32(std::string_view name, std::size_t index) const {
  return DecodeWhole<std::int32_t>(FindData(name, kInt32, index));
}

std::optional<std::int64_t> Message::FindInt64(std::string_view name, std::size_t index) const {
  return DecodeWhole<std::int64_t>(FindData(name, kInt64, index));
}

std::optional<double> Message::FindDouble(std::string_view name, std::size_t index) const {
  const auto bits = DecodeWhole<std::uint64_t>(FindData(name, kDouble, index));
  return bits ? std::optional<double>(std::bit_cast<double>(*bits)) : std::nullopt;
}

std::optional<Rect> Message::FindRect(std::string_view name, std::size_t index) const {
  const auto bytes = FindData(name, kRect, index);
  if (!bytes || bytes->size() != 16) return std::nullopt;
  const auto edge = [&bytes](std::size_t at) {
    return std::bit_cast<float>(Decode<std::uint32_t>(bytes->substr(at, 4)));
  };
  return Rect{edge(0), edge(4), edge(8), edge(12)};
}

std::optional<std::string> Message::FindString(std::string_view name, std::size_t index) const {
  const auto bytes = FindData(name, kString, index);
  return bytes ? std::optional<std::string>(*bytes) : std::nullopt;
}

std::optional<std::string_view> Message::FindData(std::string_view name, std::uint32_t type,
                                                  std::size_t index) const {
  const Field* field = Find(name);
  if (field == nullptr || field->type != type || index >= field->values.size()) {
    return std::nullopt;
  }
  return field->values[index];
}

std::size_t Message::CountValues(std::string_view name) const {
  const Field* field = Find(name);
  return field != nullptr ? field->values.size() : 0;
}

std::vector<std::string> Message::Names() const {
  std::vector<std::string> names;
  names.reserve(fields_.size());
  for (const Field& field : fields_) names.push_back(field.name);
  return names;
}

std::optional<std::uint32_t> Message::TypeOf(std::string_view name) const {
  const Field* field = Find(name);
  return field != nullptr ? std::optional<std::uint32_t>(field->type) : std::nullopt;
}

bool Message::RemoveName(std::string_view name) {
  return std::erase_if(fields_, [name](const Field& each) { return each.name == name; }) != 0;
}

std::string Message::Flatten() const {
  std::string out(kMagic);
  out += Encode(what);
  out += Encode(static_cast<std::uint32_t>(fields_.size()));
  for (const Field& field : fields_) {
    AppendCounted(out, field.name);
    out += Encode(field.type);
    out += Encode(static_cast<std::uint32_t>(field.values.size()));
    for (const std::string& value : field.values) AppendCounted(out, value);
  }
  return out;
}

std::optional<Message> Message::Unflatten(std::string_view bytes) {
  Reader reader(bytes);
  if (reader.Bytes(kMagic.size()) != kMagic) return std::nullopt;
  const auto code = reader.Number();
  const auto fields = reader.Number();
  if (!code || !fields) return std::nullopt;

  // The counts are only promises of the sender: nothing is reserved by them, so that memory grows
  // no faster than the bytes that really came.
  Message message(*code);
  std::set<std::string_view> seen;
  for (std::uint32_t i = 0; i < *fields; ++i) {
    const auto name = reader.Counted();
    const auto type = reader.Number();
    const auto values = reader.Number();
    if (!name || !type || !values || *values == 0) return std::nullopt;
    if (name->size() > kNameLimit || !seen.insert(*name).second) return std::nullopt;
    Field field{std::string(*name), *type, {}};
    for (std::uint32_t j = 0; j < *values; ++j) {
      const auto value = reader.Counted();
      if (!value) return std::nullopt;
      field.values.emplace_back(*value);
    }
    message.fields_.push_back(std::move(field));
  }
  if (!reader.AtEnd()) return std::nullopt;
  return message;
}

const Message::Field* Message::Find(std::string_view name) const {
  const auto field = std::find_if(fields_.begin(), fields_.end(),
                                  [name](const Field& each) { return each.name == name; });
  return field != fields_.end() ? &*field : nullptr;
}

}  // namespace corvane
