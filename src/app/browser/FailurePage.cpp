#include "app/browser/FailurePage.h"

#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/shared/Card.h"
#include "app/shared/EncryptionField.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Pages.h"
#include "app/shared/Password.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Symbols.h"
#include "app/shared/Tones.h"
#include "util/PortFrom.h"

namespace corvane {
namespace {

/// The cross before the heading.
class Cross : public QWidget {
 public:
  explicit Cross(QWidget* parent) : QWidget(parent) {
    constexpr int kSize = 24;
    setFixedSize(kSize, kSize);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    PaintSymbol(painter, rect(), "cross-circle", ToneOf(palette(), Tone::Bad));
  }
};

QLabel* MakeText(QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

QLineEdit* MakeField(QWidget* parent, const char* name) {
  auto* field = new QLineEdit(parent);
  field->setObjectName(name);
  return field;
}

}  // namespace

FailurePage::FailurePage(QWidget* parent)
    : QWidget(parent),
      sign_(new Cross(this)),
      heading_(MakeText(this)),
      advice_(MakeText(this)),
      server_(MakeText(this)),
      form_(new QFormLayout),
      host_(MakeField(this, "Host")),
      port_(MakeField(this, "Port")),
      user_(MakeField(this, "Username")),
      password_(new Password(this)),
      encryption_(new EncryptionField(this)),
      problem_(MakeText(this)),
      diagnose_(new QPushButton(tr("What &Is Wrong?"), this)),
      again_(new QPushButton(tr("&Try Again"), this)),
      close_(new QPushButton(tr("&Close"), this)) {
  setObjectName("FailurePage");
  heading_->setFont(Bold(font(), 125));
  heading_->setObjectName("Heading");
  advice_->setObjectName("Advice");
  server_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  server_->setObjectName("Server");
  password_->setObjectName("Password");
  problem_->setObjectName("Problem");
  diagnose_->setObjectName("Diagnose");
  again_->setObjectName("TryAgain");
  SetPrimary(*again_);
  MakeFields();
  Arrange();
  ShowRows(Mend::Nothing);
  connect(again_, &QPushButton::clicked, this, &FailurePage::TryAgain);
  connect(diagnose_, &QPushButton::clicked, this, &FailurePage::DiagnosePressed);
  connect(close_, &QPushButton::clicked, this, &FailurePage::ClosePressed);
}

void FailurePage::MakeFields() {
  form_->setContentsMargins(0, 0, 0, 0);
  form_->setHorizontalSpacing(12);
  form_->setFormAlignment(Qt::AlignLeft);
  form_->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  form_->addRow(tr("&Host:"), host_);
  form_->addRow(tr("P&ort:"), port_);
  form_->addRow(tr("&Username:"), user_);
  form_->addRow(tr("&Password:"), password_);
  form_->addRow(tr("Encr&yption:"), encryption_);
  for (QLineEdit* field : {host_, port_, user_, static_cast<QLineEdit*>(password_)}) {
    connect(field, &QLineEdit::returnPressed, this, &FailurePage::TryAgain);
  }
}

void FailurePage::Arrange() {
  auto* title = new QHBoxLayout;
  title->setSpacing(12);
  title->addWidget(sign_, 0, Qt::AlignTop);
  title->addWidget(heading_, 1);
  auto* card = new Card(this);
  auto* words = new QVBoxLayout(card);
  words->setContentsMargins(0, 0, 0, 0);
  words->addWidget(server_);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(diagnose_);
  buttons->addStretch();
  buttons->addWidget(close_);
  buttons->addWidget(again_);
  auto* column = LayOutPage(this);
  column->setSpacing(8);
  column->addLayout(title);
  column->addWidget(advice_);
  column->addWidget(card);
  column->addSpacing(8);
  column->addLayout(form_);
  column->addWidget(problem_);
  column->addSpacing(8);
  column->addLayout(buttons);
  for (const auto& [first, second] :
       std::initializer_list<std::pair<QWidget*, QWidget*>>{{host_, port_},
                                                            {port_, user_},
                                                            {user_, password_},
                                                            {password_, encryption_},
                                                            {encryption_, diagnose_},
                                                            {diagnose_, close_},
                                                            {close_, again_}})
    setTabOrder(first, second);
}

void FailurePage::Show(const Failure& failure, const Site& site) {
  site_ = site;
  mend_ = failure.mend;
  heading_->setText(failure.heading);
  advice_->setText(failure.advice);
  advice_->setVisible(!failure.advice.isEmpty());
  server_->setText(failure.server);
  server_->parentWidget()->setVisible(!failure.server.isEmpty());
  problem_->hide();
  host_->setText(ToText(site.host));
  port_->setText(QString::number(site.port));
  user_->setText(ToText(site.user));
  password_->SetActualText(site.password);
  encryption_->Choose(site.security);
  ShowRows(failure.mend);
  if (isVisible()) FirstField()->setFocus();
}

void FailurePage::ShowRows(Mend mend) {
  const auto show = [this](QWidget* field, bool shown) {
    field->setVisible(shown);
    form_->labelForField(field)->setVisible(shown);
    form_->labelForField(field)->setMinimumHeight(LookStyle::kControlHeight);
  };
  show(host_, mend == Mend::Host || mend == Mend::Port);
  show(port_, mend == Mend::Port);
  show(user_, mend == Mend::Login);
  show(password_, mend == Mend::Login);
  show(encryption_, mend == Mend::Encryption);
}

// With a name there is most often something wrong with the password.
QWidget* FailurePage::FirstField() const {
  switch (mend_) {
    case Mend::Login:
      return site_.user.empty() || site_.user == "anonymous" ? user_
                                                             : static_cast<QWidget*>(password_);
    case Mend::Encryption: return encryption_;
    case Mend::Port: return port_;
    default: return host_;
  }
}

void FailurePage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (mend_ == Mend::Nothing) {
    again_->setFocus();
  } else {
    FirstField()->setFocus();
    if (auto* field = qobject_cast<QLineEdit*>(FirstField())) field->selectAll();
  }
}

void FailurePage::TryAgain() {
  Site site = site_;
  if (mend_ == Mend::Host || mend_ == Mend::Port) {
    site.host = EditedBytes(host_->text().trimmed(), site_.host);
    site.port = PortFrom(ToBytes(port_->text()));
    if (site.host.empty() || site.port == 0) {
      problem_->setText(site.host.empty() ? tr("Enter the server's address.")
                                          : tr("The port is a number from 1 to 65535."));
      return problem_->show();
    }
  }
  if (mend_ == Mend::Login) {
    site.user = EditedBytes(user_->text(), site_.user);
    site.password = password_->actualText();
  }
  if (mend_ == Mend::Encryption) {
    site.security = encryption_->Chosen();
    if (site.port == UsualPort(site_.security)) site.port = UsualPort(site.security);
  }
  Q_EMIT TryAgainPressed(site);
}

}  // namespace corvane
