#include "app/doctor/DoctorWindow.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/doctor/DoctorLink.h"
#include "app/doctor/StepList.h"
#include "app/shared/Card.h"
#include "app/shared/LookStyle.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Strip.h"
#include "app/shared/Tones.h"
#include "app/shared/Windows.h"

namespace corvane {
namespace {

using Fix = Advice::Fix;

QLabel* MakeText(QWidget* parent, const char* name) {
  auto* label = new QLabel(parent);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

QPushButton* MakeButton(QWidget* parent, const QString& text, const char* name) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  button->setAutoDefault(false);
  return button;
}

QString ButtonFor(const Advice& advice) {
  switch (advice.fix) {
    case Fix::TurnOnPassive:
    case Fix::EncryptAtOnce:
    case Fix::EncryptByCommand: return DoctorWindow::tr("Turn &On and Connect");
    case Fix::TurnOffPassive: return DoctorWindow::tr("Turn &Off and Connect");
    case Fix::ChangePort: return DoctorWindow::tr("C&onnect to Port %1").arg(advice.site.port);
    case Fix::StartElsewhere: return DoctorWindow::tr("C&onnect Without It");
    case Fix::OtherPassword: return DoctorWindow::tr("&Enter Password…");
    case Fix::EditSite: return DoctorWindow::tr("&Edit Connection…");
    case Fix::TellOperator: return DoctorWindow::tr("Copy &Report");
    case Fix::Connect: break;
  }
  return DoctorWindow::tr("C&onnect");
}

}  // namespace

DoctorWindow::DoctorWindow(QWidget* opener, Site site, Host host)
    : QDialog(opener),
      site_(std::move(site)),
      host_(std::move(host)),
      heading_(MakeText(this, "Heading")),
      count_(MakeText(this, "Count")),
      steps_(new StepList(this)),
      strip_(new Strip("info", Tone::Running, this)),
      copy_(MakeButton(this, tr("Copy &Report"), "CopyReport")),
      again_(MakeButton(this, tr("Check &Again"), "CheckAgain")),
      close_(MakeButton(this, tr("&Close"), "Close")),
      fix_(MakeButton(this, {}, "Fix")) {
  setObjectName("DoctorWindow");
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(tr("What Is Wrong? – %1").arg(ToText(site_.host)));
  AddCloseKey(this);
  Arrange();
  connect(copy_, &QPushButton::clicked, this, &DoctorWindow::CopyReport);
  connect(again_, &QPushButton::clicked, this, &DoctorWindow::Begin);
  connect(close_, &QPushButton::clicked, this, &QWidget::close);
  connect(fix_, &QPushButton::clicked, this, &DoctorWindow::TakeAdvice);
  ChooseSize();
  Begin();
}

DoctorWindow::~DoctorWindow() {
  Stop();
}

void DoctorWindow::Arrange() {
  constexpr int kMargin = 16;
  heading_->setFont(Bold(font(), 110));
  QPalette less = count_->palette();
  less.setColor(QPalette::WindowText, ToneOf(palette(), Tone::Secondary));
  count_->setPalette(less);
  SetPrimary(*fix_);
  fix_->setDefault(true);
  auto* card = new Card(this);
  card->setContentsMargins(1, 1, 1, 1);
  auto* rows = new QVBoxLayout(card);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(steps_);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addWidget(copy_);
  buttons->addWidget(again_);
  buttons->addStretch();
  buttons->addWidget(close_);
  buttons->addWidget(fix_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  layout->setSpacing(8);
  layout->addWidget(heading_);
  layout->addWidget(count_);
  layout->addSpacing(8);
  layout->addWidget(card, 1);
  layout->addSpacing(8);
  layout->addWidget(strip_);
  layout->addSpacing(16);
  layout->addLayout(buttons);
}

// As high as the steps are, where the screen has room.
void DoctorWindow::ChooseSize() {
  constexpr QSize kUsual(560, 880);
  constexpr QSize kLeast(520, 520);
  const QScreen* on = screen();
  const int room = on != nullptr ? on->availableGeometry().height() * 9 / 10 : kUsual.height();
  setMinimumSize(kLeast.expandedTo(minimumSizeHint()));
  resize(std::max(kUsual.width(), sizeHint().width()), std::min(kUsual.height(), room));
}

void DoctorWindow::Begin() {
  Stop();
  advice_.reset();
  steps_->clear();
  heading_->setText(tr("Looking for what is wrong…"));
  ShowCount();
  strip_->hide();
  fix_->hide();
  copy_->show();
  copy_->setEnabled(false);
  again_->setEnabled(false);
  link_ = std::make_shared<DoctorLink>(*this);
  if (host_.doctor) doctor_ = host_.doctor(site_, link_);
  if (doctor_ != nullptr && doctor_->Run()) return;
  heading_->setText(tr("The connection could not be looked at."));
  again_->setEnabled(true);
}

void DoctorWindow::Stop() {
  if (link_ != nullptr) link_->Close();
  if (doctor_ != nullptr) doctor_->Cancel();
  doctor_.reset();
}

void DoctorWindow::ShowCount() {
  const QString user = ToText(site_.user.empty() ? "anonymous" : site_.user);
  count_->setText(tr("%1 of %2 steps were tried with %3 as %4.")
                      .arg(QString::number(steps_->Tried()), QString::number(steps_->count()),
                           ToText(site_.host), user));
}

void DoctorWindow::ShowStep(const DiagnosisStep& step) {
  steps_->Show(step);
  ShowCount();
}

void DoctorWindow::ShowAdvice(const Advice& advice) {
  advice_ = advice;
  doctor_.reset();
  heading_->setText(Shown(advice.verdict));
  strip_->Set(Shown(advice.heading), Shown(advice.reason));
  strip_->show();
  steps_->ShowFirst(advice.about);
  fix_->setText(ButtonFor(advice));
  fix_->show();
  fix_->setFocus();
  copy_->setVisible(advice.fix != Fix::TellOperator);
  copy_->setEnabled(true);
  again_->setEnabled(true);
  setTabOrder(steps_, copy_);
}

QString DoctorWindow::Report() const {
  QStringList parts{windowTitle(), heading_->text(), count_->text(),
                    tr("Port %1").arg(site_.port) + '\n', steps_->AsText()};
  if (advice_.has_value()) parts += {Shown(advice_->heading), Shown(advice_->reason)};
  return parts.join('\n') + '\n';
}

void DoctorWindow::CopyReport() {
  QGuiApplication::clipboard()->setText(Report());
}

void DoctorWindow::TakeAdvice() {
  if (!advice_.has_value()) return;
  if (advice_->fix == Fix::TellOperator) return CopyReport();
  const Advice advice = *advice_;
  const auto act = advice.fix == Fix::EditSite ? host_.edit : host_.connect;
  close();
  act(advice.site);
}

}  // namespace corvane
