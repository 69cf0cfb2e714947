#include "app/connect/ConnectionForm.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

#include "app/connect/Password.h"
#include "app/shared/ScreenText.h"

namespace corvane {

ConnectionForm::ConnectionForm(Label withLabel, QWidget* parent) : QWidget(parent) {
  if (withLabel == Label::With) label = Prepare(new QLineEdit(this), "Label", tr("Label"));
  host = Prepare(new QLineEdit(this), "Host", tr("Host"));
  user = Prepare(new QLineEdit(this), "User", tr("Username"));
  password = new Password(this);
  Prepare(password, "password", tr("Password"));
  path = Prepare(new QLineEdit(this), "Path", tr("Path"));
  port = Prepare(new QLineEdit(QStringLiteral("21"), this), "Port", tr("Port"));
  port->setMaximumWidth(port->fontMetrics().horizontalAdvance("000000000"));
  passive = new QCheckBox(tr("Passive C&onnection"), this);
  passive->setObjectName("Passive");

  auto* portRow = new QHBoxLayout;
  portRow->addWidget(port);
  portRow->addStretch();
  portRow->addWidget(passive);
  auto* portLabel = new QLabel(tr("Po&rt:"), this);
  portLabel->setBuddy(port);
  auto* form = new QFormLayout(this);
  form->setContentsMargins({});
  form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  if (label != nullptr) form->addRow(tr("&Label:"), label);
  form->addRow(tr("&Host:"), host);
  form->addRow(tr("&Username:"), user);
  form->addRow(tr("&Password:"), password);
  form->addRow(tr("Pa&th:"), path);
  form->addRow(portLabel, portRow);
}

QLineEdit* ConnectionForm::Prepare(QLineEdit* field, const char* name, const QString& accessible) {
  field->setObjectName(name);
  field->setAccessibleName(accessible);
  connect(field, &QLineEdit::returnPressed, this, &ConnectionForm::returnPressed);
  return field;
}

void ConnectionForm::FillTexts(const Shortcut& connection) {
  filled_ = connection;
  if (label != nullptr) label->setText(ToText(connection.label));
  host->setText(ToText(connection.host));
  user->setText(ToText(connection.user));
  password->SetActualText(connection.pass);
  path->setText(ToText(connection.path));
}

void ConnectionForm::FillMode(const Shortcut& connection) {
  port->setText(connection.port.empty() ? QStringLiteral("21") : ToText(connection.port));
  passive->setChecked(connection.passive);
}

Shortcut ConnectionForm::Entered() const {
  return {.label = label != nullptr ? EditedBytes(label->text(), filled_.label) : "",
          .host = EditedBytes(host->text(), filled_.host),
          .user = EditedBytes(user->text(), filled_.user),
          .pass = password->actualText(),
          .path = EditedBytes(path->text(), filled_.path),
          .port = port->text().isEmpty() ? "21" : ToBytes(port->text()),
          .passive = passive->isChecked()};
}

}  // namespace corvane
