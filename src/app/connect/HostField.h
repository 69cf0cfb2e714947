#pragma once

#include <QLineEdit>
#include <vector>

#include "app/connect/KnownConnections.h"

class QStandardItemModel;

namespace corvane {

/// The field for the server's address: completes from what is known, and opens the list of recent
/// connections by its arrow, Down or Alt+Down. GUI thread.
class HostField : public QLineEdit {
  Q_OBJECT

 public:
  explicit HostField(QWidget* parent);

  void OpenRecent();

 Q_SIGNALS:
  /// A whole connection was chosen.
  void Chosen(const corvane::Shortcut& connection);
  /// The recent connections were forgotten.
  void Forgotten();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void MakeCompleter();
  void ReadKnown();

  std::vector<KnownConnection> known_;
  QStandardItemModel* completions_;
};

}  // namespace corvane
