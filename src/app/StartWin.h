#pragma once

#include <QMainWindow>

class QCheckBox;
class QLineEdit;

namespace corvane {

class TambleApp;

/// The window in which the user states a server. Closing it quits the program. GUI thread.
class StartWin : public QMainWindow {
  Q_OBJECT

 public:
  StartWin(TambleApp& app, const QRect& frame);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeViews();
  void MakeMenus();
  void Connect();

  TambleApp& app_;
  QLineEdit* host_ = nullptr;
  QLineEdit* user_ = nullptr;
  QLineEdit* password_ = nullptr;
  QLineEdit* path_ = nullptr;
  QLineEdit* port_ = nullptr;
  QCheckBox* passive_ = nullptr;
};

}  // namespace corvane
