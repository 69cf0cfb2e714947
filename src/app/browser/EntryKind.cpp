#include "app/browser/EntryKind.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>

#include "app/shared/Icons.h"
#include "remote/fileStruct.h"

namespace corvane {
namespace {

struct Kinds {
  Q_DECLARE_TR_FUNCTIONS(Kinds)
};

constexpr std::array<std::string_view, 34> kTextEndings{
    "bat",  "c",  "cc",   "cfg", "conf", "cpp",   "css", "csv", "diff", "h",  "hpp", "ini",
    "java", "js", "json", "log", "md",   "patch", "pem", "php", "pl",   "po", "py",  "rb",
    "rst",  "sh", "sql",  "tex", "toml", "ts",    "txt", "xml", "yaml", "yml"};
constexpr std::array<std::string_view, 7> kTextNames{"authors",  "changelog", "copying", "license",
                                                     "makefile", "news",      "readme"};

bool IsAmong(const auto& words, std::string_view word) {
  return std::ranges::any_of(words, [word](std::string_view known) {
    return std::ranges::equal(known, word, {}, {}, [](char c) {
      return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
  });
}

EntryKind FileKind(std::string_view name) {
  switch (IconFor(kFile, name)) {
    case IconKind::Archive: return EntryKind::Archive;
    case IconKind::Audio: return EntryKind::Sound;
    case IconKind::Package: return EntryKind::Package;
    case IconKind::Html: return EntryKind::WebPage;
    case IconKind::Graphic: return EntryKind::Picture;
    default: break;
  }
  const std::size_t dot = name.rfind('.');
  const bool text = dot == std::string_view::npos ? IsAmong(kTextNames, name)
                                                  : IsAmong(kTextEndings, name.substr(dot + 1));
  return text ? EntryKind::Text : EntryKind::Binary;
}

}  // namespace

EntryKind KindOf(std::int32_t type, std::string_view name) {
  switch (type) {
    case kDirectory: return EntryKind::Directory;
    case kFile: return FileKind(name);
    case kDevice: return EntryKind::Device;
    default: return EntryKind::Link;
  }
}

const char* SymbolOf(EntryKind kind) {
  switch (kind) {
    case EntryKind::Directory: return "folder";
    case EntryKind::Link: return "link";
    case EntryKind::Text: return "text";
    case EntryKind::Archive: return "archive";
    case EntryKind::Sound: return "audio";
    case EntryKind::Package: return "package";
    case EntryKind::WebPage: return "html";
    case EntryKind::Picture: return "image";
    case EntryKind::Unclear: return "question";
    default: return "file";
  }
}

QString NameOf(EntryKind kind) {
  switch (kind) {
    case EntryKind::Directory: return Kinds::tr("Directory");
    case EntryKind::Link: return Kinds::tr("Link");
    case EntryKind::Text: return Kinds::tr("Text file");
    case EntryKind::Archive: return Kinds::tr("Archive");
    case EntryKind::Sound: return Kinds::tr("Sound");
    case EntryKind::Package: return Kinds::tr("Package");
    case EntryKind::WebPage: return Kinds::tr("Web page");
    case EntryKind::Picture: return Kinds::tr("Picture");
    case EntryKind::Device: return Kinds::tr("Device");
    case EntryKind::Unclear: return Kinds::tr("Not understood");
    case EntryKind::Binary: break;
  }
  return Kinds::tr("Binary file");
}

}  // namespace corvane
