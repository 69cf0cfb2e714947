#include "app/edited/EditedQuestions.h"

#include <QPointer>
#include <algorithm>

#include "app/edited/EditedHost.h"
#include "app/edited/EditedTexts.h"
#include "app/shared/Alerts.h"
#include "app/shared/Figures.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"

namespace corvane {
namespace {

constexpr std::int64_t kMuch = std::int64_t{100} << 20;
constexpr int kMany = 20;

Alerts::Question About(const EditedFile& file, const QString& verb) {
  Alerts::Question question;
  question.subject = EditedTexts::TitleFor(verb, &file.site);
  question.title = question.subject;
  return question;
}

}  // namespace

void EditedQuestions::AskOfConflict(std::int64_t id) {
  const EditedFile* file = files_.Find(id);
  if (file == nullptr || !asking_.insert(id).second) return;
  if (!file->found.there) return AskOfGone(*file);
  host_.FindDiffProgram([this, window = QPointer(&window_), id](const std::string& program) {
    if (window.isNull()) return;
    const EditedFile* found = files_.Find(id);
    if (found != nullptr && found->state == EditedFile::State::Conflict)
      return Ask(*found, program);
    asking_.erase(id);
  });
}

void EditedQuestions::Ask(const EditedFile& file, const std::string& program) {
  Alerts::Question question = About(file, EditedFiles::tr("Send"));
  question.heading =
      EditedFiles::tr("“%1” has been changed on the server too.").arg(EditedTexts::NameOf(file));
  question.text = question.heading;
  question.advice = EditedFiles::tr("Nothing has been replaced. What you saved stands here.");
  question.facts = {
      {QString(), EditedFiles::tr("Here"), EditedFiles::tr("On the server")},
      {EditedFiles::tr("Size"), EditedTexts::SizeOf(file.saved), EditedTexts::SizeOf(file.found)},
      {EditedFiles::tr("Date"), EditedTexts::TimeOf(file.saved), EditedTexts::TimeOf(file.found)}};
  question.buttons = {EditedFiles::tr("Keep &both"), EditedFiles::tr("Keep &mine"),
                      EditedFiles::tr("Take the &server’s"), EditedFiles::tr("Com&pare"),
                      EditedFiles::tr("&Cancel")};
  if (!file.why.IsEmpty()) question.note = Shown(file.why);
  const QString name = ToText(program);
  question.explanations = {EditedFiles::tr("Sends yours under a free name beside it."),
                           EditedFiles::tr("Replaces the file on the server."),
                           EditedFiles::tr("Drops what you saved here."),
                           program.empty()
                               ? EditedFiles::tr("No program that compares files is installed.")
                               : EditedFiles::tr("Shows in %1 in what they differ.").arg(name)};
  if (program.empty())
    question.unavailable[3] =
        EditedFiles::tr("Install Meld, Kompare, KDiff3 or Diffuse to compare.");
  const std::int64_t id = file.id;
  Alerts::Show(&window_, question, [this, id, program](int button) {
    asking_.erase(id);
    using Choice = EditedFiles::Choice;
    switch (button) {
      case 0: return files_.Settle(id, Choice::KeepBoth);
      case 1: return files_.Settle(id, Choice::KeepMine);
      case 2: return files_.Settle(id, Choice::TakeTheirs);
      case 3: return Compare(id, program);
      default: return;
    }
  });
}

void EditedQuestions::AskOfGone(const EditedFile& file) {
  Alerts::Question question = About(file, EditedFiles::tr("Send"));
  question.heading =
      EditedFiles::tr("“%1” is no longer on the server.").arg(EditedTexts::NameOf(file));
  question.text = question.heading;
  question.advice = EditedFiles::tr("What you saved stands here. It can be sent as a new file.");
  question.buttons = {EditedFiles::tr("&Send as New"), EditedFiles::tr("&Cancel")};
  question.preset = 1;
  Alerts::Show(&window_, question, [this, id = file.id](int button) {
    asking_.erase(id);
    if (button == 0) files_.Settle(id, EditedFiles::Choice::KeepMine);
  });
}

// The question is asked again once both are seen.
void EditedQuestions::Compare(std::int64_t id, const std::string& program) {
  files_.FetchTheirs(id, [this, window = QPointer(&window_), id, program](
                             const std::string& mine, const std::string& theirs) {
    if (window.isNull()) return;
    host_.CompareFiles(window, program, mine, theirs);
    AskOfConflict(id);
  });
}

void EditedQuestions::Stop(const std::vector<std::int64_t>& ids) {
  std::vector<const EditedFile*> unsent;
  for (const std::int64_t id : ids) {
    const EditedFile* file = files_.Find(id);
    if (file != nullptr && file->IsUnsent()) unsent.push_back(file);
  }
  const auto stop = [this, ids] {
    for (const std::int64_t id : ids) files_.Stop(id);
  };
  if (unsent.empty()) return stop();
  Alerts::Question question = About(*unsent.front(), EditedFiles::tr("Stop Editing"));
  const auto count = static_cast<int>(unsent.size());
  question.heading = count == 1 ? EditedFiles::tr("Drop what was not sent of “%1”?")
                                      .arg(EditedTexts::NameOf(*unsent.front()))
                                : EditedFiles::tr("Drop what was not sent of %n files?", "", count);
  question.text = question.heading;
  question.advice = EditedFiles::tr("What you saved is not on the server. There is no way back.");
  const bool half = std::ranges::any_of(
      unsent, [this](const EditedFile* file) { return files_.MayBeHalfSent(file->id); });
  if (half) {
    question.note = EditedFiles::tr(
        "Sending has begun, straight into the file on the server: what stands there may not be "
        "whole.");
  }
  question.buttons = {EditedFiles::tr("&Stop Editing"), EditedFiles::tr("&Cancel")};
  question.preset = 1;
  Alerts::Show(&window_, question, [stop](int button) {
    if (button == 0) stop();
  });
}

void EditedQuestions::AskOfSize(const Amount& amount, const std::function<void()>& go) {
  if (amount.bytes < kMuch && amount.files < kMany) return go();
  Alerts::Question question;
  question.title = question.subject = EditedFiles::tr("Open");
  const QString size = amount.unknown == 0 ? ShortSize(amount.bytes)
                       : amount.unknown < amount.files
                           ? EditedFiles::tr("more than %1").arg(ShortSize(amount.bytes))
                           : EditedFiles::tr("size not known");
  question.heading =
      amount.files == 1
          ? EditedFiles::tr("Fetch %1 to open it?").arg(ShortSize(amount.bytes))
          : EditedFiles::tr("Fetch %n files (%1) to open them?", "", amount.files).arg(size);
  question.text = question.heading;
  question.advice =
      EditedFiles::tr("All of it is fetched first, and sent back as a whole when it is saved.");
  question.buttons = {EditedFiles::tr("&Fetch"), EditedFiles::tr("&Cancel")};
  question.preset = 1;
  Alerts::Show(&window_, question, [go](int button) {
    if (button == 0) go();
  });
}

}  // namespace corvane
