#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QSignalSpy>
#include <QTest>
#include <QtWidgets>
#include <algorithm>
#include <deque>
#include <filesystem>
#include <map>
#include <tuple>

#include "app/desktop/TextEditor.h"
#include "app/edited/EditedFiles.h"
#include "app/edited/EditedHost.h"
#include "app/edited/EditedModel.h"
#include "app/edited/EditedQuestions.h"
#include "app/shared/Alerts.h"
#include "support/Files.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using State = EditedFile::State;

/// Carries transfers out at once, on files in memory, and never replaces another state than
/// expected; while it `holds` they wait.
class MemoryServer : public EditedHost {
 public:
  std::map<std::string, std::string> files;  // by path
  std::vector<std::string> sent;             // "path=contents"
  std::vector<std::string> opened;
  std::string diff{"meld"};
  std::string compared;
  bool holds = false;
  bool down = false;  // transfers fail for now
  int completed = 0;

  void Transfer(transferStruct what, TransferListener listener) override {
    EXPECT_TRUE(listener.quiet && what.tracked);
    EXPECT_EQ(what.site.password, "secret");
    waiting_.emplace_back(std::move(what), std::move(listener));
    if (!holds) Carry();
  }
  void Carry() {
    for (; !waiting_.empty(); waiting_.pop_front()) {
      const auto [what, listener] = waiting_.front();
      listener.restated(RowState::Running, {});
      if (down) {
        listener.restated(RowState::Again, Text::Raw("no line"));
        return;  // it is tried again with the next call
      }
      CarryOut(what, listener);
    }
  }
  void Forget() { waiting_.clear(); }
  void CompleteSite(QWidget*, const Site& site,
                    std::function<void(std::optional<Site>)> found) override {
    ++completed;
    Site whole = site;
    whole.password = "secret";
    found(whole);
  }
  void TryTransfersNow() override { Carry(); }
  void CancelTransfers(const std::string& folder) override {
    std::erase_if(waiting_, [&](const auto& each) { return each.first.targetFolder == folder; });
  }
  void OpenFile(QWidget*, const std::string& path) override { opened.push_back(path); }
  void EditFile(QWidget*, const std::string& path) override { opened.push_back("edit " + path); }
  void FindDiffProgram(std::function<void(std::string)> found) override { found(diff); }
  void CompareFiles(QWidget*, const std::string&, const std::string& one,
                    const std::string& other) override {
    compared = Contents(one) + "|" + Contents(other);
  }
  [[nodiscard]] FileVersion Version(const std::string& path) const {
    const auto file = files.find(path);
    if (file == files.end()) return {.there = false};
    return {.size = static_cast<std::int64_t>(file->second.size()),
            .kind = DigestKind::Md5,
            .digest = file->second};
  }

 private:
  void CarryOut(const transferStruct& what, const TransferListener& listener) {
    const TransferJob& job = what.jobs.front();
    Message told("VRSN"_what);
    bool done = true;
    if (what.download) {
      done = files.contains(job.remote);
      if (done) Write(job.local, files[job.remote]);
    } else {
      done = MayBeSame(what.expected.value(), Version(job.remote));
      if (done) {
        files[job.remote] = Contents(job.local);
        sent.push_back(job.remote + "=" + files[job.remote]);
      }
      told.AddBool("changed", !done);
    }
    AddVersion(told, Version(job.remote));
    listener.versioned(told);
    listener.restated(done ? RowState::Done : RowState::Failed, Text::Raw("no"));
  }

  std::deque<std::pair<transferStruct, TransferListener>> waiting_;
};

class Edited : public testing::Test {
 protected:
  Edited() { Begin(); }
  void Begin() {
    model_.reset();
    files_.reset();
    server_.Forget();
    files_ = std::make_unique<EditedFiles>(server_, Root(), &window_);
    model_ = std::make_unique<EditedModel>(*files_);
    files_->setParent(nullptr);
  }
  [[nodiscard]] std::string Root() const { return folder_.path().toStdString() + "/a/b"; }
  void Open(const std::string& name, bool edits = false) {
    server_.files.try_emplace("/pub/" + name, "one");
    const std::size_t before = server_.opened.size();
    files_->Open({.site = {.host = "h", .user = "u", .password = "secret"},
                  .remote = "/pub/" + name,
                  .name = name,
                  .edits = edits});
    ASSERT_TRUE(server_.holds || Until([&] { return server_.opened.size() > before; }));
  }
  static bool Until(const auto& condition) { return QTest::qWaitFor(condition, 5000); }
  bool Becomes(State state) {
    return Until([&] { return files_->Count() > 0 && files_->At(0).state == state; });
  }
  [[nodiscard]] fs::path Copy(const std::string& name = "f") const {
    return fs::path(Root()) / std::to_string(files_->At(0).id) / name;
  }
  /// Opens "f", has it changed here and there, and waits until that shows.
  void MakeConflict() {
    Open("f");
    server_.files["/pub/f"] = "theirs";
    Write(Copy(), "mine");
    ASSERT_TRUE(Becomes(State::Conflict));
    EXPECT_EQ(server_.files["/pub/f"], "theirs");
  }
  [[nodiscard]] QString StateText() const {
    return model_->index(0, EditedModel::kState).data().toString();
  }

  QTemporaryDir folder_;
  QWidget window_;
  MemoryServer server_;
  std::unique_ptr<EditedFiles> files_;
  std::unique_ptr<EditedModel> model_;
};

TEST_F(Edited, EverySaveIsSentOnceHoweverItIsMade) {
  using Save = std::function<void(const fs::path&)>;
  const std::tuple<const char*, Save, std::vector<std::string>> cases[] = {
      {"in place", [](const fs::path& p) { Write(p, "two"); }, {"/pub/f=two"}},
      {"by renaming",
       [](const fs::path& p) {
         Write(p.string() + ".new", "two");
         fs::rename(p, p.string() + "~");
         fs::rename(p.string() + ".new", p);
       },
       {"/pub/f=two"}},
      {"twice",
       [](const fs::path& p) {
         Write(p, "");
         QTest::qWait(150);
         Write(p, "half");
         QTest::qWait(150);
         Write(p, "two");
       },
       {"/pub/f=two"}},
      {"the same", [](const fs::path& p) { Write(p, "one"); }, {}},
      {"another file beside it", [](const fs::path& p) { Write(p.string() + "~", "x"); }, {}},
      {"removed and made anew",
       [](const fs::path& p) {
         fs::remove(p);
         QTest::qWait(700);
         Write(p, "two");
       },
       {"/pub/f=two"}},
  };
  for (const auto& [name, save, sent] : cases) {
    SCOPED_TRACE(name);
    Open("f");
    EXPECT_EQ(files_->At(0).state, State::Unchanged);
    save(Copy());
    if (sent.empty()) {
      QTest::qWait(1000);
    } else {
      EXPECT_TRUE(Becomes(State::Sent));
    }
    EXPECT_EQ(server_.sent, sent);
    files_->Stop(files_->At(0).id);
    server_.sent.clear();
    server_.files.clear();
  }
  const auto copies = [this] {
    const fs::directory_iterator all(Root());
    return std::count_if(begin(all), end(all),
                         [](const auto& each) { return each.is_directory(); });
  };
  EXPECT_TRUE(Until([&] { return copies() == 0; })) << "copies are removed";
}

TEST_F(Edited, WhatIsSavedMeanwhileFollows) {
  Open("f", true);
  EXPECT_EQ(server_.opened.back(), "edit " + Copy().string());
  struct stat status {};
  ASSERT_EQ(::stat(Copy().parent_path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
  server_.holds = true;
  Write(Copy(), "two");
  ASSERT_TRUE(Becomes(State::Sending));
  QTest::qWait(300);
  Write(Copy(), "three");
  QTest::qWait(700);
  server_.holds = false;
  server_.Carry();
  const std::vector<std::string> both{"/pub/f=two", "/pub/f=three"};
  EXPECT_TRUE(Until([&] { return server_.sent == both; }));
  // Without a line it waits, and says so; a second opening is the same row.
  server_.down = true;
  Write(Copy(), "four");
  ASSERT_TRUE(Becomes(State::Waiting));
  EXPECT_EQ(StateText(), "Waiting to send it: no line");
  EXPECT_EQ(files_->Unsent().size(), 1);
  Open("f");
  EXPECT_EQ(files_->Count(), 1);
  server_.down = false;
  files_->SendNow(files_->At(0).id);
  EXPECT_TRUE(Becomes(State::Sent));
  EXPECT_EQ(server_.files["/pub/f"], "four");
  EXPECT_TRUE(files_->Unsent().isEmpty());
  // Opened once more, it shows what the server has by now.
  server_.files["/pub/f"] = "five";
  Open("f");
  EXPECT_EQ(Contents(Copy()), "five");
}

TEST_F(Edited, AConflictIsTheUsersToSettle) {
  const std::tuple<int, std::string, std::string, std::string> cases[] = {
      // The answer; what stands at the name, beside it, and here in the end.
      {0, "theirs", "mine", "mine"},
      {1, "mine", "", "mine"},
      {2, "theirs", "", "theirs"},
      {4, "theirs", "", "mine"}};
  for (const auto& [answer, there, beside, here] : cases) {
    SCOPED_TRACE(answer);
    server_.files.clear();
    MakeConflict();
    if (answer == 0) server_.files["/pub/f (2)"] = "taken";
    std::vector<Alerts::Question> asked;
    Alerts::AnswerWith([&, button = answer](const Alerts::Question& question) {
      asked.push_back(question);
      return asked.size() == 1 && button == 1 ? 3 : button;  // both are seen first
    });
    EditedQuestions questions(*files_, server_, window_);
    questions.AskOfConflict(files_->At(0).id);
    if (answer != 4) {
      EXPECT_TRUE(Becomes(answer == 2 ? State::Unchanged : State::Sent)) << qPrintable(StateText());
    }
    EXPECT_EQ(asked.size(), answer == 1 ? 2U : 1U);
    EXPECT_EQ(server_.compared, answer == 1 ? "mine|theirs" : "");
    EXPECT_EQ(server_.files["/pub/f"], there);
    EXPECT_EQ(server_.files.contains("/pub/f (3)") ? server_.files["/pub/f (3)"] : "", beside);
    EXPECT_EQ(Contents(Copy()), here);
    server_.compared.clear();
    // What is not sent is not dropped unasked.
    asked.clear();
    Alerts::AnswerWith([&](const Alerts::Question& question) {
      asked.push_back(question);
      return 0;
    });
    questions.Stop({files_->At(0).id});
    EXPECT_TRUE(Until([&] { return files_->Count() == 0; }));
    EXPECT_EQ(asked.size(), answer == 4 ? 1U : 0U);
  }
  // Gone on the server: sent anew where the user wants it.
  Alerts::AnswerWith([](const Alerts::Question&) { return 0; });
  server_.diff.clear();
  Open("f");
  server_.files.clear();
  Write(Copy(), "mine");
  ASSERT_TRUE(Becomes(State::Conflict));
  EXPECT_EQ(StateText(), "Not sent: no longer there");
  EXPECT_TRUE(server_.files.empty());
  EditedQuestions questions(*files_, server_, window_);
  questions.AskOfConflict(files_->At(0).id);
  EXPECT_TRUE(Becomes(State::Sent));
  EXPECT_EQ(server_.files["/pub/f"], "mine");
  Alerts::AnswerWith({});
}

TEST_F(Edited, WhatWasNotSentIsOfferedAfterACrash) {
  Open("same");
  Open("f");
  server_.holds = true;
  Write(fs::path(Root()) / "2/f", "saved");
  ASSERT_TRUE(Until([&] { return files_->At(1).state == State::Sending; }));
  Begin();
  server_.holds = false;
  QSignalSpy restored(files_.get(), &EditedFiles::Restored);
  files_->Restore();
  ASSERT_TRUE(Until([&] { return restored.size() == 1; }));
  ASSERT_EQ(files_->Count(), 1);
  EXPECT_EQ(files_->At(0).remote, "/pub/f");
  EXPECT_EQ(StateText(), "Changed, not sent");
  EXPECT_FALSE(fs::exists(fs::path(Root()) / "1"));
  EXPECT_TRUE(server_.sent.empty()) << "nothing is sent unasked";
  files_->SendNow(files_->At(0).id);
  EXPECT_TRUE(Becomes(State::Sent));
  EXPECT_EQ(server_.files["/pub/f"], "saved");
  EXPECT_EQ(server_.completed, 1);
  // What is left is nothing to be offered.
  Begin();
  files_->Restore();
  EXPECT_TRUE(Until([&] { return !fs::exists(fs::path(Root()) / "2"); }));
  EXPECT_EQ(files_->Count(), 0);
}

TEST_F(Edited, WhatNobodyListsStaysWhereTheListCannotBeRead) {
  Open("f");
  Begin();
  Write(fs::path(Root()) / "edited.sqlite", std::string(4096, 'x'));
  files_->Restore();
  EXPECT_FALSE(files_->Trouble().IsEmpty());
  Open("g");
  EXPECT_EQ(files_->At(0).id, 2) << "no folder is used twice";
  Open("h");
  // The list that is there by then does not say what the other one did.
  Write(fs::path(Root()) / "2/.g.swp", "open in a program");
  Begin();
  files_->Restore();
  ASSERT_TRUE(Until([&] { return files_->Count() == 1; }));
  EXPECT_EQ(files_->At(0).id, 2);
  EXPECT_EQ(files_->At(0).state, State::Unchanged);
  EXPECT_FALSE(fs::exists(fs::path(Root()) / "3"));
  EXPECT_EQ(Contents(fs::path(Root()) / "1/f"), "one");
  Write(Copy("g"), "saved");
  EXPECT_TRUE(Becomes(State::Sent));
}

TEST_F(Edited, ACopyThatIsBeingSavedIsNotReplaced) {
  Open("f");
  server_.files["/pub/f"] = "theirs";
  fs::remove(Copy());
  fs::create_symlink(Copy(), Copy());  // cannot be read
  files_->OpenAgain(files_->At(0).id);
  ASSERT_TRUE(Becomes(State::Failed));
  EXPECT_TRUE(fs::is_symlink(Copy()));
  files_->Stop(files_->At(0).id);
  server_.files.clear();
  // Who takes the server's gives up what was to be sent, and nothing later.
  MakeConflict();
  server_.holds = true;
  files_->Settle(files_->At(0).id, EditedFiles::Choice::TakeTheirs);
  Write(Copy(), "later");
  QTest::qWait(700);
  server_.holds = false;
  server_.Carry();
  ASSERT_TRUE(Becomes(State::Conflict));
  EXPECT_EQ(Contents(Copy()), "later");
  files_->Settle(files_->At(0).id, EditedFiles::Choice::TakeTheirs);
  ASSERT_TRUE(Becomes(State::Unchanged));
  EXPECT_EQ(Contents(Copy()), "theirs");
}

TEST_F(Edited, NamesAndCommandsAreMadeSafe) {
  for (const char* name : {"", ".", "..", "a/b", "../../x", "/etc/passwd"}) {
    const std::string safe = EditedCopy::SafeName(name);
    EXPECT_TRUE(!safe.empty() && safe != "." && safe != ".." && safe.find('/') == std::string::npos)
        << safe;
    EXPECT_EQ(EditedCopy::SafeName(safe), safe);
  }
  EXPECT_EQ(EditedCopy::SafeName(std::string(300, 'x') + ".html").size(), 200U);
  EXPECT_TRUE(EditedCopy::SafeName(std::string(300, 'x') + ".html").ends_with(".html"));
  const std::pair<const char*, QStringList> commands[] = {
      {"", {}},
      {"kate", {"kate", "/a b"}},
      {"\"my editor\" -n %f --wait", {"my editor", "-n", "/a b", "--wait"}},
      {"gedit %U %i", {"gedit", "file:///a%20b"}}};
  for (const auto& [command, words] : commands)
    EXPECT_EQ(TextEditor::Filled(command, "/a b"), words) << command;
}

}  // namespace
}  // namespace corvane
