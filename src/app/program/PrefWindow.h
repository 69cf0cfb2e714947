#pragma once

#include <QPointer>
#include <QWidget>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "kit/Message.h"
#include "settings/SettingsTable.h"

class QCheckBox;
class QComboBox;
class QFileDialog;
class QFormLayout;
class QLineEdit;
class QPushButton;
class QTabWidget;

namespace corvane {

class FaultLine;

/// Every setting, on three tabs. Nothing is in force or stored until "Save". Deletes itself when
/// closed. GUI thread.
class PrefWindow : public QWidget {
  Q_OBJECT

 public:
  PrefWindow();

  void MessageReceived(const Message& message);
  /// Whether something stands here that is not saved.
  [[nodiscard]] bool Changed() const;

 private:
  QWidget* MakeMisc();
  QWidget* MakeSound();
  QWidget* MakeProxy();
  QWidget* MakeButtons();
  /// The settings of a tab, and the buttons that belong to one of them.
  void AddTab(QFormLayout* form, SettingsTab tab);
  void Add(QFormLayout* form, const Setting& setting);
  QLineEdit* AddField(QFormLayout* form, const Setting& setting, const std::string& text);
  static QCheckBox* AddBox(QFormLayout* form, const QString& label, const QString& hint,
                           bool checked);
  void AddTrayBox(QFormLayout* form);
  QComboBox* AddList(QFormLayout* form, const QString& label,
                     std::span<const SettingsChoice> choices, std::int32_t chosen);
  [[nodiscard]] QWidget* ControlOf(const Setting::Variable& variable) const;
  [[nodiscard]] QLineEdit* FieldOf(std::string SettingsValues::*text) const;
  [[nodiscard]] QCheckBox* BoxOf(bool SettingsValues::*flag) const;
  [[nodiscard]] QPushButton* MakeButton(const char* name, const QString& label, std::uint32_t what);
  /// Says what is wrong in a field of the last tab; false.
  bool RefuseProxy(QLineEdit* field, const QString& text);

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

  const SettingsValues shown_;  // what the controls were filled with
  SettingsValues filled_;       // and what they say of it
  QTabWidget* tabs_;
  QFormLayout* proxy_ = nullptr;  // the rows of the last tab
  FaultLine* fault_;              // and what is wrong in one of them
  std::vector<std::pair<const Setting*, QWidget*>> controls_;
  QCheckBox* tray_ = nullptr;
  QPointer<QFileDialog> panel_;
};

}  // namespace corvane
