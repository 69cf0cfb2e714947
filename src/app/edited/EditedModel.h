#pragma once

#include <QAbstractTableModel>

#include "workers/EditedFile.h"

namespace corvane {

class EditedFiles;

/// The edited files as rows of a list. GUI thread.
class EditedModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kName, kPath, kState, kColumns };
  static constexpr int kId = Qt::UserRole;  ///< the file's number

  /// `files` outlives it.
  explicit EditedModel(EditedFiles& files);

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override;

  /// The site of all files; null where there are several, or none.
  [[nodiscard]] const Site* CommonSite() const;

 private:
  [[nodiscard]] QVariant TextOf(const EditedFile& file, int column) const;

  EditedFiles& files_;
};

}  // namespace corvane
