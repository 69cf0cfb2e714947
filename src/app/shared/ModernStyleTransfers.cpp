#include <QCoreApplication>
#include <QPalette>
#include <QStringList>

#include "app/shared/Figures.h"
#include "app/shared/ModernStyle.h"
#include "app/shared/Pace.h"
#include "app/shared/Tones.h"

namespace corvane {
namespace {

class Rows {
  Q_DECLARE_TR_FUNCTIONS(corvane::TransferItem)

 public:
  static QString FigureOf(const TransferFacts& transfer) {
    if (!transfer.trailing.isEmpty()) return transfer.trailing;
    const bool done = transfer.state == TransferState::Done;
    if (transfer.several && transfer.state != TransferState::Running) {
      return transfer.files > 0 ? Files(transfer.files) : QString();
    }
    const std::int64_t whole = transfer.total > 0 ? transfer.total : transfer.there;
    if (whole == 0 && !done) return {};
    if (done || transfer.there == transfer.total || transfer.total <= 0) {
      return ShortSize(whole);
    }
    return ShortSizeOf(transfer.there, transfer.total);
  }

  static QString StateOf(const TransferFacts& transfer) {
    switch (transfer.state) {
      case TransferState::Running: return Going(transfer);
      case TransferState::Failed: return tr("Failed: %1").arg(Phrase(transfer.failure));
      case TransferState::Partly: return Phrase(transfer.failure);
      case TransferState::Cancelled: return tr("Cancelled");
      case TransferState::Done: break;
    }
    return transfer.leftOut > 0 ? tr("Done, %n left out", "", transfer.leftOut) : tr("Done");
  }

 private:
  static QString Files(int count) { return count == 1 ? tr("1 file") : tr("%n files", "", count); }

  // A sentence as a part of a row.
  static QString Phrase(const QString& sentence) {
    return sentence.endsWith('.') ? sentence.chopped(1) : sentence;
  }

  static QString Going(const TransferFacts& transfer) {
    if (!transfer.status.isEmpty()) return transfer.status;
    QStringList parts{transfer.download ? tr("From %1").arg(transfer.host)
                                        : tr("To %1").arg(transfer.host)};
    if (transfer.several && !transfer.file.isEmpty()) parts.append(transfer.file);
    if (transfer.files > 0) parts.append(tr("%1 done").arg(Files(transfer.files)));
    return parts.join(", ");
  }
};

}  // namespace

TransferWords ModernStyle::RowOf(const TransferFacts& transfer) const {
  return {transfer.name, Rows::FigureOf(transfer), Rows::StateOf(transfer), PaceOf(transfer)};
}

QString ModernStyle::PaceOf(const TransferFacts& transfer) const {
  if (transfer.state != TransferState::Running) return {};
  const bool known = transfer.total > 0 && !transfer.several;
  return PaceText(transfer.rate, known ? transfer.total - transfer.there : -1);
}

QColor ModernStyle::BarOf(TransferState state, const QPalette& palette) const {
  return state == TransferState::Running ? ToneOf(palette, Tone::Running) : QColor();
}

QString ModernStyle::DirectionOf(bool /*download*/) const {
  return {};
}

QString ModernStyle::TransferTitle(int running) const {
  QString title = QCoreApplication::translate("corvane::DownLoadWin", "Transfer List");
  if (running == 0) return title;
  return title + QString::fromUtf8(" – ") +
         QCoreApplication::translate("corvane::DownLoadWin", "%n running", nullptr, running);
}

}  // namespace corvane
