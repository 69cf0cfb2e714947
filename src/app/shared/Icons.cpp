#include "app/shared/Icons.h"

#include <QFile>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>
#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "remote/fileStruct.h"

/// The pictures lie in a static library, which nothing else would pull in.
static void LoadPictures() {
  Q_INIT_RESOURCE(icons);
}

namespace corvane {
namespace {

using ExtensionIcon = std::pair<std::string_view, IconKind>;

constexpr std::array kExtensions{
    ExtensionIcon{".zip", IconKind::Archive},  ExtensionIcon{".tgz", IconKind::Archive},
    ExtensionIcon{".gz", IconKind::Archive},   ExtensionIcon{".sit", IconKind::Archive},
    ExtensionIcon{".tar", IconKind::Archive},  ExtensionIcon{".z", IconKind::Archive},
    ExtensionIcon{".bzip", IconKind::Archive}, ExtensionIcon{".lha", IconKind::Archive},
    ExtensionIcon{".mp3", IconKind::Audio},    ExtensionIcon{".au", IconKind::Audio},
    ExtensionIcon{".wav", IconKind::Audio},    ExtensionIcon{".midi", IconKind::Audio},
    ExtensionIcon{".mid", IconKind::Audio},    ExtensionIcon{".snd", IconKind::Audio},
    ExtensionIcon{".pkg", IconKind::Package},  ExtensionIcon{".html", IconKind::Html},
    ExtensionIcon{".htm", IconKind::Html},     ExtensionIcon{".shtml", IconKind::Html},
    ExtensionIcon{".dhtml", IconKind::Html},   ExtensionIcon{".jpg", IconKind::Graphic},
    ExtensionIcon{".jpeg", IconKind::Graphic}, ExtensionIcon{".gif", IconKind::Graphic},
    ExtensionIcon{".pict", IconKind::Graphic}, ExtensionIcon{".tiff", IconKind::Graphic},
    ExtensionIcon{".bmp", IconKind::Graphic},  ExtensionIcon{".tga", IconKind::Graphic},
    ExtensionIcon{".hpgl", IconKind::Graphic}, ExtensionIcon{".iff", IconKind::Graphic},
    ExtensionIcon{".img", IconKind::Graphic},  ExtensionIcon{".ppm", IconKind::Graphic},
    ExtensionIcon{".pcx", IconKind::Graphic},  ExtensionIcon{".png", IconKind::Graphic},
    ExtensionIcon{".psd", IconKind::Graphic},  ExtensionIcon{".sgi", IconKind::Graphic},
    ExtensionIcon{".xbm", IconKind::Graphic},  ExtensionIcon{".xpm", IconKind::Graphic},
};

std::string_view ExtensionOf(std::string_view name) {
  if (name.size() < 4) return name;
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return {};
  return name.substr(dot);
}

bool EqualsLowered(std::string_view mixed, std::string_view lower) {
  return std::ranges::equal(mixed, lower, {}, [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
}

QPixmap Rendered(QSvgRenderer& picture, int size) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  picture.render(&painter);
  return pixmap;
}

}  // namespace

IconKind IconFor(std::int32_t type, std::string_view name) {
  if (type == kDirectory) return IconKind::Directory;
  if (type != kFile) return IconKind::Link;
  const std::string_view extension = ExtensionOf(name);
  for (const auto& [known, kind] : kExtensions) {
    if (EqualsLowered(extension, known)) return kind;
  }
  return IconKind::Paper;
}

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < 128;
}

QString PictureFile(const QString& name, bool dark) {
  LoadPictures();
  const QString variant = QStringLiteral(":/icons/dark/%1.svg").arg(name);
  return dark && QFile::exists(variant) ? variant : QStringLiteral(":/icons/%1.svg").arg(name);
}

QIcon ProgramIcon() {
  QSvgRenderer small(PictureFile("corvane-16", false));
  QSvgRenderer full(PictureFile("corvane", false));
  QIcon icon;
  icon.addPixmap(Rendered(small, 16));
  for (const int size : {22, 24, 32, 48, 64, 128, 256}) icon.addPixmap(Rendered(full, size));
  return icon;
}

}  // namespace corvane
