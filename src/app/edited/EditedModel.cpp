#include "app/edited/EditedModel.h"

#include <QColor>
#include <QGuiApplication>
#include <QIcon>
#include <QPalette>

#include "app/edited/EditedFiles.h"
#include "app/edited/EditedTexts.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Symbols.h"

namespace corvane {
namespace {

bool SameServer(const Site& one, const Site& other) {
  return one.host == other.host && one.port == other.port && one.user == other.user;
}

}  // namespace

EditedModel::EditedModel(EditedFiles& files) : QAbstractTableModel(&files), files_(files) {
  // The list has changed already: nothing is read between begin and end.
  connect(&files_, &EditedFiles::Added, this, [this](int row) {
    beginInsertRows({}, row, row);
    endInsertRows();
  });
  connect(&files_, &EditedFiles::Removed, this, [this](int row) {
    beginRemoveRows({}, row, row);
    endRemoveRows();
  });
  connect(&files_, &EditedFiles::Changed, this,
          [this](int row) { Q_EMIT dataChanged(index(row, 0), index(row, kColumns - 1)); });
}

int EditedModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : files_.Count();
}

int EditedModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

const Site* EditedModel::CommonSite() const {
  if (files_.Count() == 0) return nullptr;
  const Site& first = files_.At(0).site;
  for (int row = 1; row < files_.Count(); ++row)
    if (!SameServer(files_.At(row).site, first)) return nullptr;
  return &first;
}

QVariant EditedModel::TextOf(const EditedFile& file, int column) const {
  switch (column) {
    case kName: return EditedTexts::NameOf(file);
    case kPath: {
      const QString directory = EditedTexts::DirectoryOf(file);
      return CommonSite() != nullptr ? directory : EditedTexts::ServerOf(file) + directory;
    }
    default: return EditedTexts::StandingOf(file).text;
  }
}

QVariant EditedModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= files_.Count()) return {};
  const EditedFile& file = files_.At(index.row());
  const int column = index.column();
  const EditedTexts::Standing standing = EditedTexts::StandingOf(file);
  switch (role) {
    case Qt::DisplayRole: return TextOf(file, column);
    case Qt::ToolTipRole: return Harmless(TextOf(file, column).toString());
    case Qt::DecorationRole:
      if (column == kName) return Symbol("text");
      if (column == kState) return Symbol(standing.symbol, standing.tone);
      return {};
    case Qt::ForegroundRole:
      if (column == kPath) return ToneOf(QGuiApplication::palette(), Tone::Secondary);
      if (column == kState) return ToneOf(QGuiApplication::palette(), standing.tone);
      return {};
    case kId: return QVariant::fromValue<qint64>(file.id);
    default: return {};
  }
}

QVariant EditedModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  switch (section) {
    case kName: return tr("Name");
    case kPath: return tr("Path");
    default: return tr("State");
  }
}

}  // namespace corvane
