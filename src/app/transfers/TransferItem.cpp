#include "app/transfers/TransferItem.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "app/browser/MWindow.h"
#include "app/shared/EngineTexts.h"
#include "app/shared/ScreenText.h"
#include "app/transfers/TransferRequest.h"
#include "ftp/MFtp.h"
#include "net/NLException.h"

namespace corvane {
namespace {

constexpr std::size_t kNotesShown = 20;
constexpr qsizetype kNoteLength = 200;

/// One note as one short line.
QString NoteLine(const std::string& note) {
  const QString line = Translated(ToLines(note)).replace('\n', ' ');
  return line.size() <= kNoteLength ? line : line.first(kNoteLength) + QChar(0x2026);
}

}  // namespace

TransferItem::TransferItem(const Site& connection, transferStruct description, MWindow* browser)
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

void TransferItem::Start(const MakeWorker& make) {
  try {
    worker_ = make(link_, description_);
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
  Q_EMIT Ended(this);
  Q_EMIT Changed(this);
}

bool TransferItem::TakeChanged() {
  if (!link_->Progress().changed.exchange(false)) return false;
  link_->Drain();
  return true;
}

void TransferItem::Report(TransferReport report, std::vector<std::string> notes) {
  const bool ran = Running();
  const bool settles = !settled_ && report.end.has_value();
  // The worker's own word on how it ended comes after a cancellation and replaces it.
  if (!report.end.has_value()) report.end = report_.end;
  report_ = std::move(report);
  std::ranges::move(notes, std::back_inserter(notes_));
  if (settles) {
    settled_ = true;
    worker_.reset();
    LogNotes();
  }
  if (ran == Running() && !settles) return;
  if (ran && !Running()) Q_EMIT Ended(this);
  Q_EMIT Changed(this);
  if (settles) Q_EMIT Settled(this);
}

void TransferItem::LogNotes() const {
  if (browser_.isNull()) return;
  for (const std::string& note : notes_) browser_->LogLater(note + "\n");
}

void TransferItem::MessageReceived(const Message& message) {
  if (message.what == "ADDI"_what && !browser_.isNull()) browser_->MessageReceived(message);
}

QString TransferItem::ServerLine() const {
  return tr("Server: %1").arg(ToText(connection_.host));
}

QString TransferItem::TargetTitle() const {
  return IsDownload() ? tr("Saving to: ") : tr("Uploading to: ");
}

QString TransferItem::TargetPath() const {
  return ToText(IsDownload() ? description_.targetFolder : description_.remoteDirectory);
}

std::string TransferItem::LocalPath() const {
  std::string path = description_.targetFolder;
  if (!path.ends_with('/')) path += '/';
  return description_.items.size() == 1 ? path + LocalName(description_.items.front()) : path;
}

QString TransferItem::FileName() const {
  return ToText(report_.file);
}

QString TransferItem::Label() const {
  if (Running() && !report_.label.empty()) return Translated(ToText(report_.label));
  if (!report_.file.empty()) return tr("File: %1").arg(FileName());
  return {};
}

QString TransferItem::CountText() const {
  QStringList counts;
  const std::int64_t files = link_->Progress().files;
  if (files > 0) counts.append(tr("%n done", "", static_cast<int>(files)));
  if (Finished() && HasNotes())
    counts.append(tr("%n left out", "", static_cast<int>(notes_.size())));
  return counts.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(counts.join(", "));
}

QString TransferItem::RateText() const {
  const TransferProgress& progress = link_->Progress();
  const double seconds = static_cast<double>(progress.elapsed.load()) / 1e6;
  const double rate = seconds > 0 ? static_cast<double>(progress.done.load()) / seconds : 0;
  return tr("%1 bytes/sec").arg(rate, 0, 'f', 0);
}

QString TransferItem::TotalText() const {
  if (!report_.trailing.empty()) return Translated(ToText(report_.trailing));
  const TransferProgress& progress = link_->Progress();
  const std::int64_t there = progress.start + progress.done;
  if (progress.total <= 0) return there > 0 ? QString::number(there) : QString();
  return QStringLiteral("%1/%2").arg(there).arg(progress.total.load());
}

QString TransferItem::FailureText() const {
  if (!Failed()) return {};
  if (!report_.reason.empty()) return Translated(ToLines(report_.reason));
  return *report_.end == TransferEnd::Cancelled ? tr("Cancelled.") : tr("The transfer failed.");
}

QString TransferItem::FailureLine() const {
  if (!Failed()) return {};
  std::string file = report_.file;
  if (file.empty() && description_.items.size() == 1) file = description_.items.front().name;
  const QString reason = FailureText().replace('\n', ' ');
  return file.empty() ? reason : ToText(file) + ": " + reason;
}

QString TransferItem::Details() const {
  QStringList lines{Failed() ? FailureText() : TargetTitle() + TargetPath()};
  const std::size_t shown = std::min(notes_.size(), kNotesShown);
  for (std::size_t note = 0; note < shown; ++note) lines.append(NoteLine(notes_[note]));
  if (notes_.size() > shown)
    lines.append(tr("and %n more", "", static_cast<int>(notes_.size() - shown)));
  return lines.join('\n');
}

QString TransferItem::Summary() const {
  QStringList parts{ServerLine(), TargetTitle() + TargetPath(), Label() + CountText(), TotalText()};
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
