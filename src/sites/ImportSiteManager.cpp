// The site manager's XML: folders that hold folders and servers, a server's fields as elements.

#include <expat.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sites/ImportFormats.h"
#include "util/Base64.h"
#include "util/Encodings.h"
#include "util/PortFrom.h"

namespace corvane {
namespace {

using Fields = std::map<std::string, std::string, std::less<>>;

constexpr std::size_t kDeepest = 100;        // elements within each other
constexpr std::size_t kLongestName = 1'000;  // bytes, of a folder
constexpr std::string_view kBlanks = " \t\r\n";

std::string Trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return std::string(text.substr(0, text.find_last_not_of(kBlanks) + 1));
}

// Takes a decimal number and the blank behind it.
std::optional<std::size_t> TakeNumber(std::string_view& text) {
  const std::size_t end = std::min(text.find(' '), text.size());
  std::size_t number = 0;
  for (const char digit : text.substr(0, end)) {
    if (digit < '0' || digit > '9' || number > ShortcutImport::kMostBytes) return {};
    number = number * 10 + static_cast<std::size_t>(digit - '0');
  }
  if (end == 0) return {};
  text.remove_prefix(std::min(end + 1, text.size()));
  return number;
}

// Takes so many characters of UTF-8 and the blank behind them.
std::optional<std::string> TakeName(std::string_view& text, std::size_t characters) {
  std::size_t end = 0;
  for (; characters > 0 && end < text.size(); --characters) {
    for (++end; end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U;)
      ++end;
  }
  if (characters > 0 || (end < text.size() && text[end] != ' ')) return {};
  std::string name(text.substr(0, end));
  text.remove_prefix(std::min(end + 1, text.size()));
  return name;
}

// The path in its escaped form: the kind of server, the length of a prefix and, where that is not
// 0, the prefix; then each name behind the number of its characters. Nothing where that cannot be
// read or belongs to a system of other paths.
std::optional<std::string> ReadPath(std::string_view text) {
  constexpr std::size_t kUnix = 1;  // 0 leaves it open
  if (text.empty() || text.starts_with('/')) return std::string(text);
  const auto kind = TakeNumber(text);
  const auto prefix = TakeNumber(text);
  if (kind.value_or(kUnix + 1) > kUnix || prefix != 0U) return {};
  std::string path;
  while (!text.empty()) {
    const auto length = TakeNumber(text);
    const auto name = length ? TakeName(text, *length) : std::nullopt;
    if (!name.has_value() || name->empty() || name->find('/') != std::string::npos) return {};
    path += "/" + *name;
  }
  return path.empty() ? "/" : path;
}

/// Makes a shortcut of the fields of one server.
class ServerFields {
 public:
  explicit ServerFields(const Fields& fields) : fields_(fields) {}

  ImportedShortcut Read(std::string folder, int bookmarks) {
    Shortcut& shortcut = entry_.shortcut;
    Site& site = shortcut.site;
    shortcut.folder = std::move(folder);
    site.host = Trimmed(Field("Host"));
    shortcut.label = Trimmed(Field("Name"));
    if (shortcut.label.empty()) shortcut.label = Trimmed(Field(""));
    if (shortcut.label.empty()) shortcut.label = site.host;
    ReadProtocol();
    const std::string port = Field("Port");
    site.port = port.empty() ? UsualPort(site.security) : PortFrom(port);
    site.passive = Field("PasvMode") != "MODE_ACTIVE";
    site.connections = std::clamp<std::int32_t>(PortFrom(Field("MaximumMultipleConnections")), 0,
                                                Site::kMostConnections);
    if (Field("EncodingType") == "Custom") ReadEncoding(Trimmed(Field("CustomEncoding")));
    ReadLogin();
    auto path = ReadPath(Trimmed(Field("RemoteDir")));
    if (!path.has_value()) Note(Text("Its directory cannot be read, and is left out."));
    site.path = std::move(path).value_or("");
    if (bookmarks > 0) Note(Text("Its own bookmarks are left out."));
    return std::move(entry_);
  }

 private:
  [[nodiscard]] std::string Field(std::string_view name) const {
    const auto field = fields_.find(name);
    return field == fields_.end() ? "" : field->second;
  }
  void Note(const Text& text) { entry_.notes.push_back(text); }

  void ReadProtocol() {
    const std::string protocol = Trimmed(Field("Protocol"));
    Security& security = entry_.shortcut.site.security;
    if (protocol == "3") {
      security = Security::Implicit;
    } else if (protocol == "4") {
      security = Security::Required;
    } else if (protocol == "6") {
      security = Security::Plain;
    } else if (!protocol.empty() && protocol != "0") {
      entry_.refusal = OtherProtocol(protocol == "1" ? "sftp" : "");
    }
  }

  void ReadEncoding(const std::string& name) {
    if (name.empty() || name == "UTF-8") return;
    if (!Encoded("a", name).has_value()) return Note(Text("Its encoding is not known here."));
    entry_.shortcut.site.encoding = name;
  }

  void ReadLogin() {
    Site& site = entry_.shortcut.site;
    const std::string kind = Trimmed(Field("Logontype"));
    if (kind == "0") return;  // anonymous
    site.user = Field("User");
    if (site.user.empty() || site.user == "anonymous") return;
    if (kind == "4") Note(Text("Its account is left out."));
    if (kind == "2" || kind == "3") {
      site.asksPassword = true;
      return;
    }
    ReadPassword();
    if (site.password.empty()) site.keptPassword = true;  // asked for with the first connection
  }

  void ReadPassword() {
    const std::string encoding = Field("Pass encoding");
    if (encoding == "crypt")
      return Note(Text("Its password is encrypted with a master password, and is asked for."));
    std::optional<std::string> password = Field("Pass");
    if (encoding == "base64") password = Base64Decoded(*password);
    const bool known = encoding.empty() || encoding == "base64";
    if (!known || !password.has_value() || password->find('\0') != std::string::npos)
      return Note(Text("Its password cannot be read, and is asked for."));
    entry_.shortcut.site.password = std::move(*password);
  }

  const Fields& fields_;
  ImportedShortcut entry_;
};

class SiteManagerReader {
 public:
  ShortcutImport Read(std::string_view xml) {
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) return Damaged({});
    parser_ = parser.get();
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(parser_, &Begun, &Ended);
    XML_SetCharacterDataHandler(parser_, &Said);
    // Nothing that declares entities is a list of sites.
    XML_SetStartDoctypeDeclHandler(parser_, &Declared);
    const auto status = XML_Parse(parser_, xml.data(), static_cast<int>(xml.size()), XML_TRUE);
    if (!failure_.IsEmpty()) return {.failure = failure_};
    if (status != XML_STATUS_OK) {
      return Damaged(Text("Line %1 cannot be read.", XML_GetCurrentLineNumber(parser_)));
    }
    if (!hasSites_) return {.failure = Text("The file holds no sites.")};
    import_.source = Text("the site manager of FileZilla");
    return std::move(import_);
  }

 private:
  enum class Kind { Root, Servers, Folder, Server, Field, Other };

  static SiteManagerReader& Self(void* data) { return *static_cast<SiteManagerReader*>(data); }
  static void XMLCALL Begun(void* data, const XML_Char* name, const XML_Char** attributes) {
    Self(data).Begin(name, attributes);
  }
  static void XMLCALL Ended(void* data, const XML_Char* /*name*/) { Self(data).End(); }
  static void XMLCALL Said(void* data, const XML_Char* text, int length) {
    Self(data).Say({text, static_cast<std::size_t>(length)});
  }
  static void XMLCALL Declared(void* data, const XML_Char* /*name*/, const XML_Char* /*system*/,
                               const XML_Char* /*public*/, int /*internal*/) {
    Self(data).Stop(Text("This is no list of connections that Corvane can read."));
  }

  void Stop(const Text& why) {
    if (failure_.IsEmpty()) failure_ = why;
    XML_StopParser(parser_, XML_FALSE);
  }

  void Begin(const std::string& name, const XML_Char** attributes) {
    if (open_.size() >= kDeepest) return Stop(Text("The folders in this file are too deep."));
    open_.push_back(KindOf(name));
    switch (open_.back()) {
      case Kind::Servers: hasSites_ = true; break;
      case Kind::Folder: folders_.emplace_back(); break;
      case Kind::Server:
        fields_.clear();
        bookmarks_ = 0;
        break;
      case Kind::Field:
        field_ = name;
        for (; *attributes != nullptr; attributes += 2) {
          fields_[name + " " + attributes[0]] = attributes[1];
        }
        break;
      case Kind::Other: bookmarks_ += name == "Bookmark" ? 1 : 0; break;
      case Kind::Root: break;
    }
  }

  Kind KindOf(const std::string& name) {
    if (open_.empty()) {
      if (name == "FileZilla3") return Kind::Root;
      Stop(name.starts_with("FileZilla")
               ? Text("The file is of a version that Corvane cannot read.")
               : Text("This is no list of connections that Corvane can read."));
      return Kind::Other;
    }
    switch (open_.back()) {
      case Kind::Root: return name == "Servers" ? Kind::Servers : Kind::Other;
      case Kind::Servers:
      case Kind::Folder:
        if (name == "Folder") return Kind::Folder;
        return name == "Server" ? Kind::Server : Kind::Other;
      case Kind::Server: return name == "Bookmark" ? Kind::Other : Kind::Field;
      case Kind::Field:
      case Kind::Other: break;
    }
    return Kind::Other;
  }

  void Say(std::string_view text) {
    if (open_.empty()) return;
    if (open_.back() == Kind::Folder) SayFolder(text);
    if (open_.back() == Kind::Server) fields_[""].append(text);  // where older files have the name
    if (open_.back() == Kind::Field) fields_[field_].append(text);
  }

  // The blanks between what is in the folder come as part of its name.
  void SayFolder(std::string_view text) {
    std::string& name = folders_.back();
    name.append(text);
    if (name.size() > kLongestName) name = Trimmed(name);
    if (name.size() > kLongestName) StopAtNames();
  }
  void StopAtNames() { Stop(Text("The names of folders in this file are too long.")); }

  void End() {
    if (open_.empty()) return;
    if (open_.back() == Kind::Folder) folders_.pop_back();
    if (open_.back() == Kind::Server) AddServer();
    open_.pop_back();
  }

  void AddServer() {
    if (import_.entries.size() >= ShortcutImport::kMostEntries) {
      return Stop(TooMany().failure);
    }
    std::string folder;
    for (const std::string& each : folders_) {
      const std::string name = FolderNameFrom(each);
      if (!name.empty()) folder = FolderIn(folder, name);
    }
    folder = CleanPath(folder);
    folderBytes_ += folder.size();
    if (folderBytes_ > ShortcutImport::kMostBytes) return StopAtNames();
    import_.entries.push_back(ServerFields(fields_).Read(std::move(folder), bookmarks_));
  }

  XML_Parser parser_ = nullptr;
  std::vector<Kind> open_;            // the elements that have begun
  std::vector<std::string> folders_;  // their names, those of the folders that have begun
  std::size_t folderBytes_ = 0;       // of the folders of all servers so far
  Fields fields_;                     // of the server that has begun
  std::string field_;
  int bookmarks_ = 0;
  bool hasSites_ = false;
  Text failure_;
  ShortcutImport import_;
};

}  // namespace

ShortcutImport ReadSiteManager(std::string_view xml) {
  return SiteManagerReader().Read(xml);
}

}  // namespace corvane
