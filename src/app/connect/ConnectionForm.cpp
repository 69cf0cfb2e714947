#include "app/connect/ConnectionForm.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

#include "app/connect/Password.h"
#include "app/shared/ScreenText.h"
#include "util/PortFrom.h"

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
  host->setText(ToText(connection.site.host));
  user->setText(ToText(connection.site.user));
  password->SetActualText(connection.site.password);
  path->setText(ToText(connection.site.path));
}

void ConnectionForm::FillMode(const Shortcut& connection) {
  port->setText(QString::number(connection.site.port));
  passive->setChecked(connection.site.passive);
}

Shortcut ConnectionForm::Entered() const {
  const std::uint16_t number = port->text().isEmpty() ? 21 : PortFrom(ToBytes(port->text()));
  return {.label = label != nullptr ? EditedBytes(label->text(), filled_.label) : "",
          .site = {.host = EditedBytes(host->text(), filled_.site.host),
                   .port = number,
                   .user = EditedBytes(user->text(), filled_.site.user),
                   .password = password->actualText(),
                   .path = EditedBytes(path->text(), filled_.site.path),
                   .passive = passive->isChecked()}};
}

}  // namespace corvane
