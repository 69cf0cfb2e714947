#pragma once

#include <QAbstractTableModel>
#include <set>
#include <string>
#include <vector>

#include "app/shared/EntriesHost.h"

namespace corvane {

/// What was found, a row each; texts are made when they are shown. GUI thread.
class FindModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kName, kPath, kSize, kDate, kColumns };

  FindModel(const EntriesHost& host, QObject* parent) : QAbstractTableModel(parent), host_(host) {}

  void Clear();
  void Append(std::vector<FoundEntry> entries);
  /// Takes the rows of those paths away.
  void Remove(const std::set<std::string>& paths);
  [[nodiscard]] const FoundEntry& At(int row) const {
    return found_.at(static_cast<std::size_t>(row));
  }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                    int role) const override;
  /// Orders what is there; what comes later stands behind.
  void sort(int column, Qt::SortOrder order) override;

 private:
  [[nodiscard]] QString TextOf(const FoundEntry& found, int column) const;

  const EntriesHost& host_;
  std::vector<FoundEntry> found_;
};

}  // namespace corvane
