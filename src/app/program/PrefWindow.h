#pragma once

#include <QPointer>
#include <QWidget>
#include <cstdint>

#include "app/program/TrustedCertificates.h"
#include "kit/Message.h"
#include "settings/SettingsTable.h"

class QCheckBox;
class QFileDialog;
class QFormLayout;
class QLineEdit;
class QPushButton;
class QTabWidget;

namespace corvane {

class FaultLine;
class SettingControls;
class TrustedList;

/// Every setting, on tabs, and the certificates that the user trusts. Nothing is in force or stored
/// until "Save". Deletes itself when closed. GUI thread.
class PrefWindow : public QWidget {
  Q_OBJECT

 public:
  explicit PrefWindow(TrustedCertificates trusted);

  void MessageReceived(const Message& message);
  /// Whether something stands here that is not saved.
  [[nodiscard]] bool Changed() const;

 Q_SIGNALS:
  /// What was entered is in force.
  void Saved();

 private:
  void MakeTabs();
  QWidget* MakeSound();
  QWidget* MakeProxy();
  QWidget* MakeSecurity();
  QWidget* MakeButtons();
  /// A page with the settings of a tab, and what belongs to one of them.
  QWidget* MakeTab(SettingsTab tab);
  [[nodiscard]] QPushButton* MakeButton(const char* name, const QString& label, std::uint32_t what);
  /// Says what is wrong in a field of the proxy's tab; false.
  bool RefuseProxy(QLineEdit* field, const QString& text);

  void SelectFolder();
  void SelectSound();
  /// A panel to be set up and shown; null while one is open, which comes forward.
  QFileDialog* NewPanel(const QString& title);
  void ProxyToggled();
  /// False, and the user told, when the proxy that is to be used lacks something.
  bool CheckProxy();
  void Save();

  const TrustedCertificates trusted_;
  SettingControls* controls_;
  SettingsValues filled_;  // what the controls say at first
  QTabWidget* tabs_;
  QWidget* proxy_ = nullptr;  // a tab
  FaultLine* fault_;          // what is wrong in it
  QCheckBox* tray_ = nullptr;
  TrustedList* certificates_ = nullptr;
  QPointer<QFileDialog> panel_;
};

}  // namespace corvane
