#include "app/TransferItem.h"

#include <algorithm>
#include <utility>

#include "app/MWindow.h"
#include "app/Text.h"
#include "ftp/MFtp.h"
#include "net/NLException.h"

namespace corvane {

TransferItem::TransferItem(const Connection& connection, transferStruct description,
                           MWindow* browser)
    : connection_(connection),
      description_(std::move(description)),
      browser_(browser),
      link_(std::make_shared<TransferLink>(*this)) {
  link_->Progress().total = std::max<std::int64_t>(description_.size, 0);
}

TransferItem::~TransferItem() {
  LetGo();
}

void TransferItem::LetGo() {
  link_->Close();
  if (worker_ != nullptr) worker_->Cancel();
}

void TransferItem::Start(const WorkerFactory& factory) {
  try {
    worker_ = factory.transfer(connection_, link_, description_);
  } catch (const NLException& error) {
    link_->SetEndState(TransferEnd::Failed, Reason(error));
    return;
  }
  if (!worker_->Run()) {
    link_->SetEndState(TransferEnd::Failed, tr("The system has no thread to give.").toStdString());
  }
}

void TransferItem::Cancel() {
  if (!Running()) return;
  if (worker_ != nullptr) worker_->Cancel();
  report_.end = TransferEnd::Cancelled;
  Q_EMIT Changed(this);
}

void TransferItem::Report(TransferReport report) {
  // The worker's own word on how it ended comes after a cancellation and replaces it.
  if (!report.end.has_value()) report.end = report_.end;
  report_ = std::move(report);
  if (!Running()) worker_.reset();
  Q_EMIT Changed(this);
}

void TransferItem::MessageReceived(const Message& message) {
  if (message.what == "ADDI"_what && !browser_.isNull()) browser_->MessageReceived(message);
}

QString TransferItem::ServerLine() const {
  return tr("Server: ") + ToText(connection_.host);
}

QString TransferItem::TargetTitle() const {
  return IsDownload() ? tr("Saving to: ") : tr("Uploading to: ");
}

QString TransferItem::TargetPath() const {
  return ToText(IsDownload() ? description_.targetFolder : description_.remoteDirectory);
}

QString TransferItem::Label() const {
  if (!report_.label.empty()) return ToText(report_.label);
  if (!report_.file.empty()) return tr("File: ") + ToText(report_.file);
  return {};
}

QString TransferItem::RateText() const {
  const TransferProgress& progress = link_->Progress();
  const double seconds = static_cast<double>(progress.elapsed.load()) / 1e6;
  const double rate = seconds > 0 ? static_cast<double>(progress.done.load()) / seconds : 0;
  return tr("%1 bytes/sec").arg(rate, 0, 'f', 0);
}

QString TransferItem::TotalText() const {
  if (!report_.trailing.empty()) return ToText(report_.trailing);
  const TransferProgress& progress = link_->Progress();
  const std::int64_t there = progress.start + progress.done;
  if (progress.total <= 0) return there > 0 ? QString::number(there) : QString();
  return QStringLiteral("%1/%2").arg(there).arg(progress.total.load());
}

QString TransferItem::FailureText() const {
  if (!Failed()) return {};
  if (!report_.reason.empty()) return ToLines(report_.reason);
  return *report_.end == TransferEnd::Cancelled ? tr("Cancelled.") : tr("The transfer failed.");
}

QString TransferItem::FailureLine() const {
  if (!Failed()) return {};
  std::string file = report_.file;
  if (file.empty() && description_.items.size() == 1) file = description_.items.front().name;
  const QString reason = FailureText().replace('\n', ' ');
  return file.empty() ? reason : ToText(file) + ": " + reason;
}

QString TransferItem::Summary() const {
  QStringList parts{ServerLine(), TargetTitle() + TargetPath(), Label(), TotalText()};
  if (Running()) parts.append(RateText());
  if (Finished()) parts.append(tr("Finished"));
  if (Failed()) parts.append(FailureLine());
  parts.removeAll(QString());
  return parts.join(QStringLiteral(", "));
}

double TransferItem::Fraction() const {
  if (Finished()) return 1;
  const TransferProgress& progress = link_->Progress();
  const double total = static_cast<double>(progress.total.load());
  if (total <= 0) return 0;
  return std::clamp(static_cast<double>(progress.start + progress.done) / total, 0.0, 1.0);
}

}  // namespace corvane
