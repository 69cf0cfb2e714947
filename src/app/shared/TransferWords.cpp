#include "app/shared/TransferWords.h"

#include <QCoreApplication>

namespace corvane {
namespace {

class Words {
  Q_DECLARE_TR_FUNCTIONS(corvane::TransferItem)

 public:
  static QString Waiting(int before) {
    return before > 0 ? tr("Waiting, %1 before it").arg(before) : tr("Waiting for its turn");
  }

  static QString Paused(const QString& count) {
    return count.isEmpty() ? tr("Paused") : tr("Paused, %1").arg(count);
  }

  static QString Again(const TransferFacts& transfer) {
    const QString when = tr("Trying again in %1 s (%2 of %3)")
                             .arg(transfer.seconds)
                             .arg(transfer.tries)
                             .arg(transfer.most);
    QString why = transfer.failure;
    if (why.endsWith('.')) why.chop(1);
    return why.isEmpty() ? when : when + QStringLiteral(": ") + why;
  }

  static QString Stalled(int seconds) { return tr("Stalled for %1 s").arg(seconds); }

  static QString Count(const TransferFacts& transfer) {
    if (!transfer.several || transfer.allFiles <= 0) return {};
    const QString all = QString::number(transfer.allFiles);
    if (transfer.state == TransferState::Done && transfer.files == transfer.allFiles) {
      return transfer.files == 1 ? tr("1 file") : tr("%n files", "", transfer.files);
    }
    return (transfer.planning ? tr("%1 of %2 files so far") : tr("%1 of %2 files"))
        .arg(transfer.files)
        .arg(all);
  }
};

}  // namespace

QString StandingOf(const TransferFacts& transfer) {
  switch (transfer.state) {
    case TransferState::Waiting: return Words::Waiting(transfer.before);
    case TransferState::Paused: return Words::Paused(FileCount(transfer));
    case TransferState::Again: return Words::Again(transfer);
    case TransferState::Running:
      return transfer.stalled > 0 ? Words::Stalled(transfer.stalled) : QString();
    default: return {};
  }
}

QString FileCount(const TransferFacts& transfer) {
  return Words::Count(transfer);
}

}  // namespace corvane
