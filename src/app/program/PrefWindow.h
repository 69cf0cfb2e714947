#pragma once

#include <QPointer>
#include <QWidget>
#include <cstdint>
#include <string>

#include "kit/Message.h"
#include "settings/ProcessSettings.h"

class QCheckBox;
class QComboBox;
class QFileDialog;
class QFormLayout;
class QLineEdit;
class QTabWidget;

namespace corvane {

/// Every setting, on three tabs. Nothing is in force or stored until "Save". Deletes itself when
/// closed. GUI thread.
class PrefWindow : public QWidget {
  Q_OBJECT

 public:
  PrefWindow();

  void MessageReceived(const Message& message);

 private:
  QWidget* MakeMisc();
  QWidget* MakeSound();
  QWidget* MakeProxy();
  QWidget* MakeButtons();
  QLineEdit* AddField(QFormLayout* form, const char* name, const QString& label,
                      const std::string& text);
  QCheckBox* AddBox(QFormLayout* form, const char* name, const QString& label, bool checked);
  void AddButton(QFormLayout* form, const char* name, const QString& label, std::uint32_t what);

  void SelectFolder();
  void SelectSound();
  /// A panel to be set up and shown; null while one is open, which comes forward.
  QFileDialog* NewPanel(const QString& title);
  void PutSound(const QString& path);
  void ProxyToggled();
  [[nodiscard]] SettingsValues Entered() const;
  /// False, and the user told, when the proxy that is to be used lacks something.
  bool CheckProxy();
  void Save();

  const SettingsValues shown_;  // what the fields were filled with
  QTabWidget* tabs_;
  QLineEdit* password_ = nullptr;
  QLineEdit* folder_ = nullptr;
  QCheckBox* showTransfers_ = nullptr;
  QCheckBox* removeItem_ = nullptr;
  QCheckBox* notify_ = nullptr;
  QCheckBox* tray_ = nullptr;
  QCheckBox* sameConnection_ = nullptr;
  QComboBox* bufferSize_ = nullptr;
  QLineEdit* loginSuccess_ = nullptr;
  QLineEdit* loginFailure_ = nullptr;
  QLineEdit* upload_ = nullptr;
  QLineEdit* download_ = nullptr;
  QCheckBox* useProxy_ = nullptr;
  QLineEdit* proxyHost_ = nullptr;
  QLineEdit* proxyPort_ = nullptr;
  QPointer<QFileDialog> panel_;
};

}  // namespace corvane
