#pragma once

#include <QObject>
#include <string>
#include <utility>
#include <vector>

#include "settings/SettingsTable.h"

class QCheckBox;
class QFormLayout;
class QHBoxLayout;
class QLineEdit;
class QWidget;

namespace corvane {

/// The fields, boxes, lists and buttons in which settings are shown and changed, made from their
/// table. GUI thread.
class SettingControls : public QObject {
  Q_OBJECT

 public:
  /// `shown`: what they are filled with.
  SettingControls(const SettingsValues& shown, QObject* parent);

  /// The rows of a tab, on a new page.
  static QFormLayout* MakeForm(QWidget* page);
  /// A row whose label's key goes to `field`; it stands there itself, or within `whole`.
  static void AddRow(QFormLayout* form, const QString& label, QWidget* field,
                     QWidget* whole = nullptr);
  static void AddHeading(QFormLayout* form, const QString& text);
  static QCheckBox* AddBox(QFormLayout* form, const QString& label, const QString& hint,
                           bool checked);
  /// Adds the control of a setting. What `beside` is not null stands behind its field.
  void Add(QFormLayout* form, const Setting& setting, QWidget* beside = nullptr);

  [[nodiscard]] QWidget* ControlOf(const Setting::Variable& variable) const;
  [[nodiscard]] QLineEdit* FieldOf(std::string SettingsValues::*text) const;
  [[nodiscard]] QCheckBox* BoxOf(bool SettingsValues::*flag) const;
  /// The field of that tab that has the focus; null where none has.
  [[nodiscard]] QLineEdit* FocusedFieldOf(SettingsTab tab) const;
  /// The settings as the controls say.
  [[nodiscard]] SettingsValues Entered() const;

 Q_SIGNALS:
  /// Enter, in any field.
  void Confirmed();
  /// A field's text has changed.
  void Edited();

 private:
  QWidget* AddField(QFormLayout* form, const Setting& setting, const std::string& text,
                    QWidget* beside);
  /// A number that is typed, in a row of its own or behind the one before.
  QWidget* AddNumber(QFormLayout* form, const Setting& setting, std::int32_t number);
  QWidget* AddList(QFormLayout* form, const Setting& setting, std::int32_t chosen);
  QWidget* AddButtons(QFormLayout* form, const Setting& setting, std::int32_t chosen);

  const SettingsValues shown_;
  std::vector<std::pair<const Setting*, QWidget*>> controls_;
  QHBoxLayout* numbers_ = nullptr;  // the row of the last one that is typed
};

}  // namespace corvane
