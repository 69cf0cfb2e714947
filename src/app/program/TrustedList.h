#pragma once

#include <QWidget>
#include <vector>

#include "app/program/TrustedCertificates.h"

class QPushButton;
class QTreeWidget;

namespace corvane {

/// The certificates that the user trusts, to be looked at and removed. What is removed goes with
/// Save(). GUI thread.
class TrustedList : public QWidget {
  Q_OBJECT

 public:
  explicit TrustedList(const TrustedCertificates& trusted);

  [[nodiscard]] bool Changed() const { return !removed_.empty(); }
  void Save();

 private:
  QWidget* MakeButtons();
  void AddRow(std::size_t number);
  [[nodiscard]] const KnownServers::Entry* Chosen() const;
  void SelectionChanged();
  void ShowChosen();
  void RemoveChosen();

  const TrustedCertificates& trusted_;
  const std::vector<KnownServers::Entry> servers_;
  std::vector<const KnownServers::Entry*> removed_;
  QTreeWidget* list_;
  QPushButton* show_;
  QPushButton* remove_;
};

}  // namespace corvane
