#include "AppFixture.h"
#include "app/browser/BrowserTransfers.h"
#include "app/shared/QuestionBox.h"

namespace corvane {
namespace {

/// Answers the questions about what is there one after the other, by the verbs of their choices;
/// "*" behind a verb ticks the box for the others.
class Existing : public AppFixture {
 protected:
  Existing() {
    for (const char* name : {"a", "b", "c"}) MakeLocal(name, 1);
    EXPECT_TRUE(QFile::link("/nowhere", folder_.filePath("link")));
    EXPECT_TRUE(QDir(folder_.path()).mkdir("tree"));
    link_->SetPath("/pub");
  }
  void MakeLocal(const QString& name, int size) const {
    QFile file(folder_.filePath(name));
    ASSERT_TRUE(file.open(QFile::WriteOnly) && file.resize(size));
    ASSERT_TRUE(file.setFileTime(QDateTime::fromSecsSinceEpoch(1'750'000'000),
                                 QFileDevice::FileModificationTime));
  }
  static RemoteEntry Timed(const std::string& name, std::int64_t size, std::int64_t later = 0) {
    return {.name = name,
            .size = size,
            .modified = RemoteTime{1'750'000'000 + later, RemoteTime::Precision::Second, true}};
  }
  void AnswerInTurn(const QStringList& verbs) {
    Anew();
    verbs_ = verbs;
    Alerts::AnswerWith([this](const Alerts::Question& question) {
      alerts_.push_back(question);
      if (question.explanations.isEmpty()) return 0;
      EXPECT_EQ(question.preset, 0);
      EXPECT_EQ(question.buttons.size(), question.explanations.size() + 1);
      QString verb = verbs_.isEmpty() ? QString() : verbs_.takeFirst();
      question.ticked(verb.endsWith('*'));
      const int button = static_cast<int>(question.buttons.indexOf(verb.remove('*')));
      EXPECT_GE(button, 0) << question.buttons.join('|').toStdString();
      return button;
    });
  }
  /// Whether what was asked, and only that, has been answered, and the transfer begun with `moved`.
  void Expect(std::size_t questions, const std::string& moved) {
    EXPECT_TRUE(Wait([&] { return alerts_.size() == questions && verbs_.isEmpty(); }));
    EXPECT_TRUE(moved.empty() || Begins());
    QTest::qWait(moved.empty() ? 50 : 0);
    EXPECT_EQ(alerts_.size(), questions);
    EXPECT_EQ(Moved(), moved);
  }
  /// Downloads all that is listed.
  void Fetch() {
    View().selectAll();
    Command(Qt::Key_D);
  }

  QStringList verbs_;
};

TEST_F(Existing, DownloadsAreAskedAboutOneByOneOrAllAtOnce) {
  const std::vector<RemoteEntry> all{Timed("a", 2), Timed("b", 1), Timed("c", 1, 5), File("new"),
                                     Folder("tree")};
  const std::vector<RemoteEntry> one{Timed("a", 2)};
  const QString skip("&Skip");
  const QString overwrite("&Overwrite");
  // What is listed, the answers, and what is downloaded.
  const std::tuple<std::vector<RemoteEntry>, QStringList, const char*> cases[] = {
      {one, {skip}, ""},
      {one, {"&Cancel"}, ""},
      {one, {"&Resume"}, "/pub/a>/a&"},
      {one, {"&Keep both"}, "/pub/a>/a (2)+"},
      {{Timed("b", 1)}, {"Only &newer"}, ""},
      {{Timed("b", 1, 5)}, {"Only &newer"}, "/pub/b>/b!"},
      {{File("link")}, {}, ""},
      {{Folder("a")}, {}, ""},
      {{File("link"), File("new")}, {}, "/pub/link>/link+ /pub/new>/new+"},
      {{Folder("tree")}, {skip}, "/pub/tree/>/tree?"},
      {all,
       {"Only &newer", skip, overwrite, "&Keep both"},
       "/pub/tree/>/tree^ /pub/b>/b! /pub/c>/c (2)+ /pub/new>/new+"},
      {all, {skip, "&Cancel"}, ""},
      {all, {skip + "*"}, "/pub/tree/>/tree? /pub/new>/new+"},
      {all, {overwrite, skip, "Only &newer*"}, "/pub/tree/>/tree! /pub/c>/c! /pub/new>/new+"},
  };
  for (const auto& [entries, verbs, moved] : cases) {
    SCOPED_TRACE(verbs.join(' ').toStdString() + moved);
    AnswerInTurn(verbs);
    List(entries);
    Fetch();
    const bool warned = verbs.isEmpty() && *moved == '\0';
    Expect(static_cast<std::size_t>(verbs.size()) + (warned ? 1 : 0), moved);
  }
}

TEST_F(Existing, AQuestionTellsBothSides) {
  settings_.DwnldDir = folder_.path().toStdString();
  const QString same("Both have the same size and date.");
  // What is listed; the advice behind the folder, sizes and dates behind their labels, the box.
  const auto day = [](int offset) { return QDateTime::fromSecsSinceEpoch(1'750'000'000 + offset); };
  const auto date = [&](int offset) {
    const QDateTime moment = day(offset);
    return QLocale(QLocale::English, QLocale::UnitedKingdom)
        .toString(moment, QStringLiteral("dd MMM yyyy HH:mm"));
  };
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
  const std::tuple<std::vector<RemoteEntry>, QString, QStringList, QStringList, QString> cases[] = {
      {{Timed("a", 1)}, "\n" + same, {"1 B", "1 B"}, {date(0), date(0)}, ""},
      {{Timed("a", 22'912, 90'000), File("b")},
       "",
       {"22.9 kB", "1 B"},
       {date(90'000) + ", newer", date(0)},
       "The same for the other &file"},
      {{Timed("a", -1, -90'000), File("b"), File("c")},
       "",
       {"Not known", "1 B"},
       {date(-90'000), date(0) + ", newer"},
       "The same for the other &2 files"},
  };
  for (const auto& [entries, advice, sizes, dates, tick] : cases) {
    AnswerInTurn({"&Cancel"});
    List(entries);
    Fetch();
    ASSERT_TRUE(Wait([&] { return alerts_.size() == 1; }));
    const Alerts::Question& question = alerts_[0];
    EXPECT_EQ(question.subject, "Download – server.test");
    EXPECT_EQ(question.heading, "“a” is there already.");
    EXPECT_EQ(question.advice, "In " + folder_.path() + advice);
    EXPECT_EQ(question.facts[0], QStringList({"", "On the server", "Here"}));
    EXPECT_EQ(question.facts[1], QStringList("Size") + sizes);
    EXPECT_EQ(question.facts[2], QStringList("Date") + dates);
    EXPECT_EQ(question.tick, tick);
  }
  QLocale::setDefault(QLocale::system());
}

TEST_F(Existing, UploadsAreAskedAboutFromTheListing) {
  List({Timed("a", 0), Folder("tree"), Link("c")});
  const auto here = [this](const char* name) { return folder_.filePath(name).toStdString(); };
  const std::string from = folder_.path().toStdString();
  // What is uploaded, the answers, and what goes.
  const std::tuple<std::vector<std::string>, QStringList, const char*> cases[] = {
      {{here("a")}, {"&Resume"}, "/a>/pub/a&"},
      {{here("a"), here("b")}, {"&Keep both"}, "/a>/pub/a (2)+ /b>/pub/b+"},
      {{here("a"), here("tree")}, {"&Skip*"}, "/tree/>/pub/tree?"},
      {{here("c")}, {}, ""},
  };
  for (const auto& [paths, verbs, moved] : cases) {
    AnswerInTurn(verbs);
    window_->Transfers().Upload(paths);
    Expect(1, moved);
    if (verbs.isEmpty()) continue;
    EXPECT_EQ(alerts_[0].subject, "Upload – server.test");
    EXPECT_EQ(alerts_[0].facts[0], QStringList({"", "Here", "On the server"}));
  }
}

// Also in a directory that is not shown.
TEST_F(Existing, ThePreferenceIsAnswerEnough) {
  const std::vector<RemoteEntry> all{Timed("a", 2), Timed("b", 1, 5), File("link"), Folder("tree")};
  const std::tuple<int, const char*, const char*> cases[] = {
      {0, nullptr, "/x>/pub/sub/x+"},
      {257, nullptr, "/x>/pub/sub/x+"},
      {1, "/pub/tree/>/tree! /pub/a>/a! /pub/b>/b! /pub/link>/link+", "/x>/pub/sub/x!"},
      {2, "/pub/tree/>/tree& /pub/a>/a& /pub/link>/link+", "/x>/pub/sub/x&"},
      {3, "/pub/tree/>/tree?", "/x>/pub/sub/x?"},
      {4, "/pub/tree/>/tree^ /pub/a>/a! /pub/b>/b! /pub/link>/link+", "/x>/pub/sub/x+"},
      {5, "/pub/tree/>/tree= /pub/a>/a (2)+ /pub/b>/b (2)+ /pub/link>/link (2)+", "/x>/pub/sub/x+"},
  };
  settings_.compareChecksums = false;
  settings_.partNames = false;
  settings_.connectionsPerTransfer = 9;
  List(all);
  for (const auto& [existing, down, up] : cases) {
    settings_.existing = existing;
    ProcessSettings::Set(settings_);
    AnswerInTurn({});
    window_->Transfers().Upload({"/x"}, "sub");
    Expect(0, up);
    if (down == nullptr) continue;
    AnswerInTurn({});
    Fetch();
    Expect(0, down);
    const transferStruct& what = transfers_.at(0)->description;
    EXPECT_FALSE(what.checks || what.usesPartNames);
    EXPECT_EQ(what.connections, 8);
  }
}

TEST_F(Existing, AHundredThousandFilesAreOneQuestion) {
  constexpr int kMany = 100'000;
  std::vector<RemoteEntry> entries;
  for (int i = 0; i < kMany; ++i) entries.push_back(Timed("n" + std::to_string(i), 1));
  for (int i = 0; i < kMany; i += 1000) MakeLocal("n" + QString::number(i), 1);
  List(std::move(entries));
  AnswerInTurn({"&Keep both*"});
  Fetch();
  EXPECT_TRUE(QTest::qWaitFor([&] { return transfers_.size() == 1; }, 20'000));
  EXPECT_EQ(alerts_.size(), 1U);
  EXPECT_EQ(transfers_.at(0)->description.jobs.size(), std::size_t{kMany});
}

}  // namespace
}  // namespace corvane
