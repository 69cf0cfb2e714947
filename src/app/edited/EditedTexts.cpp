#include "app/edited/EditedTexts.h"

#include <QDateTime>

#include "app/edited/EditedFiles.h"
#include "app/shared/Figures.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

using State = EditedFile::State;

QString WithReason(const QString& text, const QString& alone, const Text& why) {
  return why.IsEmpty() ? alone : text.arg(ShownInLine(why));
}

QString ServerName(const Site& site) {
  const QString host = ToText(site.host);
  const bool named = !site.user.empty() && site.user != "anonymous";
  return named ? ToText(site.user) + '@' + host : host;
}

QString SentText(std::int64_t seconds) {
  const QDateTime time = QDateTime::fromSecsSinceEpoch(seconds);
  const bool today = time.date() == QDate::currentDate();
  return EditedFiles::tr("Sent %1").arg(
      today ? FiguresLocale().toString(time.time(), QLocale::ShortFormat)
            : ShortDate(time.date(), time.time()));
}

}  // namespace

EditedTexts::Standing EditedTexts::StandingOf(const EditedFile& file) {
  switch (file.state) {
    case State::Fetching:
      return {"download", Tone::Running,
              WithReason(EditedFiles::tr("Waiting to fetch it: %1"), EditedFiles::tr("Fetching …"),
                         file.why)};
    case State::Unchanged: return {"circle", Tone::Secondary, EditedFiles::tr("Opened, unchanged")};
    case State::Changed: return {"pencil", Tone::Caution, EditedFiles::tr("Changed, not sent")};
    case State::Waiting:
      return {"clock", Tone::Caution,
              WithReason(EditedFiles::tr("Waiting to send it: %1"),
                         EditedFiles::tr("Waiting to send it"), file.why)};
    case State::Sending: return {"upload", Tone::Running, EditedFiles::tr("Sending …")};
    case State::Sent: return {"tick-circle", Tone::Good, SentText(file.sentAt)};
    case State::Conflict:
      return {"triangle", Tone::Bad,
              file.found.there ? EditedFiles::tr("Not sent: changed there too")
                               : EditedFiles::tr("Not sent: no longer there")};
    case State::Failed: break;
  }
  const bool fetched = !file.digest.empty();
  return {
      "cross-circle", Tone::Bad,
      WithReason(fetched ? EditedFiles::tr("Not sent: %1") : EditedFiles::tr("Not fetched: %1"),
                 fetched ? EditedFiles::tr("Not sent") : EditedFiles::tr("Not fetched"), file.why)};
}

QString EditedTexts::NameOf(const EditedFile& file) {
  return ToText(SplitPath(file.remote).second, file.site.encoding);
}

QString EditedTexts::DirectoryOf(const EditedFile& file) {
  return ToText(SplitPath(file.remote).first, file.site.encoding);
}

QString EditedTexts::ServerOf(const EditedFile& file) {
  return ServerName(file.site);
}

QString EditedTexts::TitleFor(const QString& subject, const Site* site) {
  if (site == nullptr) return subject;
  constexpr int kUsualPort = 21;
  const QString server = ServerName(*site);
  const QString port = site->port == kUsualPort ? "" : QStringLiteral(":%1").arg(site->port);
  return subject + QStringLiteral(" – ") + server + port;
}

QString EditedTexts::TimeOf(const FileVersion& version) {
  if (!version.modified) return EditedFiles::tr("Not known");
  const QDateTime time = QDateTime::fromSecsSinceEpoch(*version.modified);
  return ShortDate(time.date(), time.time());
}

QString EditedTexts::SizeOf(const FileVersion& version) {
  return version.size < 0 ? EditedFiles::tr("Not known") : ShortSize(version.size);
}

}  // namespace corvane
