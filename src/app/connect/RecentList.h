#pragma once

#include <QListWidget>
#include <vector>

#include "app/connect/KnownConnections.h"

namespace corvane {

/// The list that opens below a field: the connections that came about lately, and a row that
/// forgets them. Closes with a choice, Escape or a click elsewhere, and deletes itself. GUI thread.
class RecentList : public QListWidget {
  Q_OBJECT

 public:
  RecentList(const std::vector<KnownConnection>& recent, QWidget* field);

  /// Opens as wide as `field` and right below it, or above where there is no room.
  void OpenAt(const QWidget& field);

  /// "today 08:51", "yesterday 18:02", or the day, by the user's locale.
  [[nodiscard]] static QString WhenText(std::int64_t when);

 Q_SIGNALS:
  void Chosen(const corvane::Shortcut& connection);
  void ForgetAsked();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void AddRow(const KnownConnection& recent);
  void Take(const QListWidgetItem* item);

  std::vector<KnownConnection> recent_;
};

}  // namespace corvane
