#pragma once

#include <concepts>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// A text for the user that is put into words where it is shown: a sentence and what fills its
/// places, or bytes as they are (a name, a path, the server's words). A value; not locked.
///
/// A sentence is identified by its English form, in which "%1" to "%9" are the places. Windows look
/// the identifier up in the user's language; the log takes the English form.
class Text {
 public:
  /// The English form of a sentence. Made from literals only, so that the sources name every
  /// sentence that a catalogue must hold.
  class Sentence {
   public:
    consteval Sentence(const char* english) : english_(english) {}
    [[nodiscard]] constexpr const char* English() const { return english_; }

   private:
    const char* english_;
  };

  /// No text.
  Text() = default;
  /// `places` fill "%1", "%2" and so on: texts, bytes (taken as they are) or integers.
  template <typename... Places>
  Text(Sentence sentence, const Places&... places)
      : words_(sentence.English()), isSentence_(true), places_{Part(places)...} {}

  /// Bytes that are shown as they are.
  [[nodiscard]] static Text Raw(std::string_view bytes);
  /// Several texts, each on a line of its own; empty ones leave no line.
  [[nodiscard]] static Text Lines(std::vector<Text> lines);
  /// `reason` behind an empty line; `text` alone where there is none.
  [[nodiscard]] static Text WithReason(const Text& text, const Text& reason);

  /// The reason that WithReason put behind; the whole text where there is none.
  [[nodiscard]] const Text& Reason() const;

  [[nodiscard]] bool IsEmpty() const { return words_.empty(); }
  /// The identifier; empty for bytes.
  [[nodiscard]] std::string_view Identifier() const;
  /// The bytes; empty for a sentence.
  [[nodiscard]] std::string_view Bytes() const;
  [[nodiscard]] const std::vector<Text>& Places() const { return places_; }

  /// The whole in English; bytes as they are.
  [[nodiscard]] std::string English() const;

  /// The text as bytes for a message, and back; nothing when they are no text.
  [[nodiscard]] std::string Flatten() const;
  [[nodiscard]] static std::optional<Text> Unflatten(std::string_view bytes);

  friend bool operator==(const Text&, const Text&) = default;

 private:
  static const Text& Part(const Text& text) { return text; }
  static Text Part(std::string_view bytes) { return Raw(bytes); }
  static Text Part(std::integral auto number) { return Raw(std::to_string(number)); }
  static std::optional<Text> Take(std::string_view& bytes, int depth);

  std::string words_;
  bool isSentence_ = false;
  std::vector<Text> places_;
};

/// `sentence` with each "%1" to "%9" replaced by `fill(index)`, counted from 0.
template <typename Out, typename Character, typename Fill>
void FillPlaces(std::basic_string_view<Character> sentence, Out& out, const Fill& fill) {
  for (std::size_t i = 0; i < sentence.size(); ++i) {
    const bool place = sentence[i] == '%' && i + 1 < sentence.size() && sentence[i + 1] >= '1' &&
                       sentence[i + 1] <= '9';
    if (!place) {
      out += sentence[i];
      continue;
    }
    out += fill(static_cast<std::size_t>(sentence[++i] - '1'));
  }
}

}  // namespace corvane
