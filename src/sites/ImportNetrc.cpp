// netrc: what programs of the command line know of logins.

#include <algorithm>
#include <optional>
#include <string>

#include "sites/ImportFormats.h"

namespace corvane {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

class NetrcReader {
 public:
  explicit NetrcReader(std::string_view text) : left_(text) {}

  ShortcutImport Read() {
    while (failure_.IsEmpty()) {
      const std::optional<std::string> word = Word();
      if (!word.has_value()) break;
      Take(*word);
      if (import_.entries.size() > ShortcutImport::kMostEntries) return TooMany();
    }
    if (!failure_.IsEmpty()) return Damaged(failure_);
    for (ImportedShortcut& entry : import_.entries) Finish(entry);
    import_.source = Text("a netrc file");
    return std::move(import_);
  }

 private:
  void Take(const std::string& word) {
    if (word.starts_with('#')) return SkipTo("\n");
    if (word == "macdef") {
      (void)Value();
      return SkipTo("\n\n");
    }
    if (word == "machine" || word == "default") {
      import_.entries.push_back({.shortcut = {.site = {.passive = true}}});
      ImportedShortcut& entry = import_.entries.back();
      if (word == "machine") entry.shortcut.site.host = Value();
      if (word == "default")
        entry.refusal = Text("It stands for all servers, and names none of them.");
      return;
    }
    const bool known = word == "login" || word == "password" || word == "account";
    if (!known || import_.entries.empty()) {
      failure_ = Text("Line %1 cannot be read.", line_);
      return;
    }
    const std::string value = Value();
    ImportedShortcut& entry = import_.entries.back();
    if (word == "login") entry.shortcut.site.user = value;
    if (word == "password") entry.shortcut.site.password = value;
    if (word == "account") entry.notes.push_back(Text("Its account is left out."));
  }

  static void Finish(ImportedShortcut& entry) {
    Site& site = entry.shortcut.site;
    entry.shortcut.label = site.host.empty() ? "default" : site.host;
    if (site.user.empty() || site.user == "anonymous") {
      site.password.clear();
    } else if (site.password.empty()) {
      site.keptPassword = true;  // asked for with the first connection
    }
  }

  // The next word, its quotes taken off; nothing at the end.
  std::optional<std::string> Word() {
    Skip(std::min(left_.find_first_not_of(kBlanks), left_.size()));
    if (left_.empty()) return {};
    if (left_.front() == '"') return Quoted();
    const std::size_t end = std::min(left_.find_first_of(kBlanks), left_.size());
    std::string word(left_.substr(0, end));
    Skip(end);
    return word;
  }

  std::string Value() {
    auto word = Word();
    if (!word.has_value()) failure_ = Text("Its end is missing.");
    return word.value_or("");
  }

  std::string Quoted() {
    std::string word;
    std::size_t at = 1;
    while (at < left_.size() && left_[at] != '"' && left_[at] != '\n') {
      if (left_[at] == '\\' && at + 1 < left_.size()) ++at;
      word += left_[at++];
    }
    if (at >= left_.size() || left_[at] != '"') failure_ = Text("Line %1 cannot be read.", line_);
    Skip(std::min(at + 1, left_.size()));
    return word;
  }

  void SkipTo(std::string_view end) { Skip(std::min(left_.find(end), left_.size())); }
  void Skip(std::size_t count) {
    line_ += static_cast<int>(std::ranges::count(left_.substr(0, count), '\n'));
    left_.remove_prefix(count);
  }

  std::string_view left_;
  int line_ = 1;
  Text failure_;
  ShortcutImport import_;
};

}  // namespace

ShortcutImport ReadNetrc(std::string_view text) {
  return NetrcReader(text).Read();
}

}  // namespace corvane
