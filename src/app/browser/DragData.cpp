#include "app/browser/DragData.h"

#include <optional>
#include <utility>

#include "util/LocalUrl.h"

namespace corvane {
namespace {

const QString kDirectSave = QStringLiteral("XdndDirectSave0");
const QString kExtractService = QStringLiteral("application/x-kde-ark-dndextract-service");
const QString kExtractPath = QStringLiteral("application/x-kde-ark-dndextract-path");

}  // namespace

const QString DragData::kRows = QStringLiteral("application/x-corvane-rows");

DragData::DragData(Ways ways, std::function<void(const std::string&)> told)
    : ways_(std::move(ways)), told_(std::move(told)) {}

QStringList DragData::formats() const {
  QStringList formats{kRows};
  if (ways_.property != nullptr) formats << kDirectSave;
  if (!ways_.service.isEmpty()) formats << kExtractService << kExtractPath;
  return formats;
}

QVariant DragData::retrieveData(const QString& format, QMetaType /*type*/) const {
  if (!hasFormat(format)) return {};
  if (format == kDirectSave) return AnswerDirectSave();
  if (format == kExtractService) return ways_.service.toUtf8();
  if (format == kExtractPath) return ways_.path.toUtf8();
  return QByteArray();
}

// Some targets ask while the pointer is still on its way; the property then still holds the name
// that was proposed.
QByteArray DragData::AnswerDirectSave() const {
  const std::string left = ways_.property();
  if (left.empty() || left == ways_.name) return {};
  const std::optional<std::string> path = LocalPathOf(left);
  if (!path.has_value()) return "E";
  told_(FolderOf(*path));
  return "S";
}

}  // namespace corvane
