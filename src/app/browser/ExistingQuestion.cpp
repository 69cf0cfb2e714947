#include "app/browser/ExistingQuestion.h"

#include <QDateTime>
#include <memory>
#include <utility>

#include "app/browser/BrowserSession.h"
#include "app/browser/MWindow.h"
#include "app/browser/SiteNames.h"
#include "app/shared/Figures.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"

namespace corvane {
namespace {

using Age = TransferPlan::Age;
using There = TransferPlan::There;

/// A server's time in a zone that it does not tell stands as it told it.
QString DateOf(const std::optional<RemoteTime>& moment) {
  if (!moment) return MWindow::tr("Not known");
  const QDateTime time = moment->utc ? QDateTime::fromSecsSinceEpoch(moment->seconds)
                                     : QDateTime::fromSecsSinceEpoch(moment->seconds, Qt::UTC);
  const bool dayOnly = moment->precision == RemoteTime::Precision::Day;
  return ShortDate(time.date(), dayOnly ? std::nullopt : std::optional(time.time()));
}

/// Two sizes beside each other; to the byte where they would look the same and are not.
QStringList SizesOf(std::int64_t one, std::int64_t other) {
  const auto text = [](std::int64_t size, auto form) {
    return size < 0 ? MWindow::tr("Not known") : form(size);
  };
  const bool exact = one >= 0 && other >= 0 && one != other && ShortSize(one) == ShortSize(other);
  const auto form = exact ? ExactSize : ShortSize;
  return {text(one, form), text(other, form)};
}

}  // namespace

ExistingQuestion::ExistingQuestion(MWindow& window, const TransferPlan& plan,
                                   const TransferPlan::Entry& entry, bool download)
    : window_(window), plan_(plan), entry_(entry), download_(download) {}

void ExistingQuestion::AddOther(const TransferPlan::Entry& entry) {
  ++others_;
  foldersToo_ = foldersToo_ || entry.IsMerged();
}

void ExistingQuestion::Ask(Answer then) const {
  const QString verb = download_ ? MWindow::tr("Download") : MWindow::tr("Upload");
  Alerts::Question question{
      .sign = Alerts::Sign{"question", Tone::Running},
      .subject = Style::InForce().TitleOf(TitleFor(window_.Session().To(), verb)),
      .heading = (entry_.IsMerged() ? MWindow::tr("The folder “%1” is there already.")
                                    : MWindow::tr("“%1” is there already."))
                     .arg(Shown(entry_.local)),
      .advice = Advice(),
      .tick = ForOthers()};
  question.title = question.subject;
  question.text = question.heading;
  question.buttons.clear();
  if (!entry_.IsMerged()) question.facts = Facts();
  std::vector<Policy> policies;
  for (const Choice& choice : entry_.IsMerged() ? OfFolder() : OfFile()) {
    policies.push_back(choice.policy);
    question.buttons.append(choice.verb);
    question.explanations.append(choice.explanation);
  }
  question.buttons.append(MWindow::tr("&Cancel"));
  const auto forOthers = std::make_shared<bool>(false);
  question.ticked = [forOthers](bool ticked) { *forOthers = ticked; };
  Alerts::Show(&window_, question, [policies, forOthers, then = std::move(then)](int button) {
    if (button < 0 || button >= static_cast<int>(policies.size())) return;
    then(policies[static_cast<std::size_t>(button)], *forOthers);
  });
}

std::vector<ExistingQuestion::Choice> ExistingQuestion::OfFile() const {
  const QString name = Shown(entry_.freeName);
  std::vector<Choice> choices{
      {Policy::Skip, MWindow::tr("&Skip"),
       download_ ? MWindow::tr("The file here stays as it is.")
                 : MWindow::tr("The file on the server stays as it is.")},
      {Policy::Resume, MWindow::tr("&Resume"),
       download_ ? MWindow::tr("Fetches only the rest, after comparing the beginning.")
                 : MWindow::tr("Sends only the rest, after comparing the beginning.")},
      {Policy::Replace, MWindow::tr("&Overwrite"),
       download_ ? MWindow::tr("Replaces the file here.")
                 : MWindow::tr("Replaces the file on the server.")},
      {Policy::Newer, MWindow::tr("Only &newer"),
       download_ ? MWindow::tr("Replaces what is newer on the server, or of another size.")
                 : MWindow::tr("Replaces what is newer here, or of another size.")},
      {Policy::KeepBoth, MWindow::tr("&Keep both"),
       MWindow::tr("The new one becomes “%1”.").arg(name)}};
  if (entry_.there != There::Shorter) choices.erase(choices.begin() + 1);
  return choices;
}

std::vector<ExistingQuestion::Choice> ExistingQuestion::OfFolder() const {
  return {
      {Policy::Skip, MWindow::tr("&Skip"), MWindow::tr("Files that are there stay as they are.")},
      {Policy::Resume, MWindow::tr("&Resume"),
       MWindow::tr("Completes files that are there in part, replaces what differs.")},
      {Policy::Replace, MWindow::tr("&Overwrite"), MWindow::tr("Replaces files that are there.")},
      {Policy::Newer, MWindow::tr("Only &newer"),
       download_ ? MWindow::tr("Replaces what is newer on the server, or of another size.")
                 : MWindow::tr("Replaces what is newer here, or of another size.")},
      {Policy::KeepBoth, MWindow::tr("&Keep both"),
       MWindow::tr("New ones get names such as “table (2).csv”.")}};
}

QString ExistingQuestion::Advice() const {
  QString place = MWindow::tr("In %1").arg(Shown(plan_.folder));
  if (entry_.IsMerged()) {
    return place + '\n' +
           MWindow::tr("New files go into it. What becomes of files that are in both?");
  }
  if (entry_.there != There::SameSize || entry_.AgeToThere() != Age::Same) return place;
  return place + '\n' + MWindow::tr("Both have the same size and date.");
}

std::vector<QStringList> ExistingQuestion::Facts() const {
  QString date = DateOf(entry_.modified);
  QString dateThere = DateOf(entry_.modifiedThere);
  const Age age = entry_.AgeToThere();
  if (age == Age::Newer) date = MWindow::tr("%1, newer").arg(date);
  if (age == Age::Older) dateThere = MWindow::tr("%1, newer").arg(dateThere);
  QStringList sides{MWindow::tr("On the server"), MWindow::tr("Here")};
  if (!download_) sides.swapItemsAt(0, 1);
  return {QStringList{QString()} + sides,
          QStringList{MWindow::tr("Size")} + SizesOf(entry_.size, entry_.sizeThere),
          {MWindow::tr("Date"), date, dateThere}};
}

QString ExistingQuestion::ForOthers() const {
  if (others_ == 0) return {};
  if (others_ == 1) {
    return foldersToo_ ? MWindow::tr("The same for the other &folder")
                       : MWindow::tr("The same for the other &file");
  }
  return foldersToo_ ? MWindow::tr("The same for the other &%n entries", "", others_)
                     : MWindow::tr("The same for the other &%n files", "", others_);
}

QString ExistingQuestion::Shown(const std::string& raw) const {
  return download_ ? ToText(raw) : ToText(raw, window_.Session().To().encoding);
}

}  // namespace corvane
