#include "app/connect/MoreFields.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

#include "app/shared/IconButton.h"
#include "app/shared/LookStyle.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Symbols.h"
#include "util/Encodings.h"

namespace corvane {
MoreFields::MoreFields(QFormLayout& rows, QWidget* form)
    : QObject(form),
      rows_(rows),
      more_(new IconButton("chevron-right", tr("More"), form)),
      encoding_(new QComboBox(form)),
      certificate_(new QLineEdit(form)),
      connections_(new QSpinBox(form)),
      asks_(new QCheckBox(tr("As&k for the password each time"), form)) {
  more_->setObjectName("More");
  more_->ShowText(tr("&More"));
  asks_->setObjectName("AsksPassword");
  asks_->setMinimumHeight(LookStyle::kControlHeight);
  MakeEncodings(form);
  rows_.addRow(more_);
  first_ = rows_.rowCount();
  rows_.addRow(tr("Encoding of &names:"), encoding_);
  rows_.addRow(tr("Client c&ertificate:"), MakeCertificateRow(form));
  MakeConnections();
  rows_.addRow(tr("Connections for each transfer:"), connections_);
  rows_.addRow(asks_);
  if (auto* label =
          qobject_cast<QLabel*>(rows_.itemAt(first_ + 1, QFormLayout::LabelRole)->widget())) {
    label->setBuddy(certificate_);
  }
  connect(more_, &IconButton::clicked, this, [this] { Show(!shown_); });
  Show(false);
}

void MoreFields::MakeConnections() {
  connections_->setObjectName("SiteConnections");
  connections_->setAccessibleName(tr("Connections for each transfer"));
  connections_->findChild<QLineEdit*>()->setAccessibleName(connections_->accessibleName());
  connections_->setRange(0, Site::kMostConnections);
  connections_->setSpecialValueText(tr("As in the preferences"));
  connections_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void MoreFields::MakeEncodings(QWidget* form) {
  encoding_->setParent(form);
  encoding_->setObjectName("Encoding");
  encoding_->setAccessibleName(tr("Encoding of names"));
  encoding_->addItem(tr("Automatic"), QByteArray());
  for (const auto& [label, name] : OfferedEncodings())
    encoding_->addItem(Shown(label), QByteArray(name));
  // Wide labels make the list wide, not the window.
  encoding_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  encoding_->setMinimumContentsLength(12);
}

QWidget* MoreFields::MakeCertificateRow(QWidget* form) {
  auto* whole = new QWidget(form);
  certificate_->setParent(whole);
  certificate_->setObjectName("ClientCertificate");
  certificate_->setAccessibleName(tr("Client certificate"));
  certificate_->setPlaceholderText(tr("none"));
  certificate_->setToolTip(tr("A file of the form PEM or PKCS#12"));
  auto* choose = new QPushButton(tr("Choo&se…"), whole);
  choose->setObjectName("ChooseCertificate");
  choose->setAutoDefault(true);
  connect(choose, &QPushButton::clicked, this, &MoreFields::ChooseFile);
  auto* row = new QHBoxLayout(whole);
  row->setContentsMargins({});
  row->setSpacing(8);
  row->addWidget(certificate_, 1);
  row->addWidget(choose);
  return whole;
}

void MoreFields::Show(bool shown) {
  shown_ = shown;
  more_->setIcon(Symbol(shown ? "chevron-down" : "chevron-right"));
  for (int row = first_; row < first_ + 4; ++row) rows_.setRowVisible(row, shown);
  Q_EMIT HeightChanged();
}

void MoreFields::ChooseFile() {
  auto* panel = new QFileDialog(certificate_->window(), tr("Select a Client Certificate"));
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setFileMode(QFileDialog::ExistingFile);
  panel->setNameFilters({tr("Certificates (*.pem *.crt *.p12 *.pfx)"), tr("All files (*)")});
  connect(panel, &QFileDialog::fileSelected, certificate_, &QLineEdit::setText);
  panel->open();
}

// An encoding that the list does not know is kept as an entry of its own.
void MoreFields::Fill(const Site& site) {
  const auto name = QByteArray::fromStdString(site.encoding);
  int index = encoding_->findData(name);
  if (index < 0) {
    encoding_->addItem(ToText(site.encoding), name);
    index = encoding_->count() - 1;
  }
  encoding_->setCurrentIndex(index);
  file_ = site.clientCertificate;
  certificate_->setText(ToText(file_));
  connections_->setValue(site.connections);
  asks_->setChecked(site.asksPassword);
  Show(!site.encoding.empty() || !file_.empty() || site.asksPassword || site.connections > 0);
}

void MoreFields::Put(Site& site) const {
  site.encoding = encoding_->currentData().toByteArray().toStdString();
  site.clientCertificate = EditedBytes(certificate_->text(), file_);
  site.connections = connections_->value();
  site.asksPassword = asks_->isChecked();
}

}  // namespace corvane
