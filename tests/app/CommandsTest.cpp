#include "AppFixture.h"
#include "app/browser/MViewFile.h"
#include "app/browser/NewDir.h"
#include "app/browser/RenameWin.h"
#include "app/browser/UploadPanel.h"
#include "app/shared/SmallView.h"
#include "util/Digest.h"

namespace corvane {
namespace {

class Commands : public AppFixture {
 protected:
  Commands() {
    UseClassicStyle();
    link_->SetPath("/pub");
    List({File("b", 5), Folder("dir"), Link("link"), File("\xE4", 5), File("z", 5)});
  }
  /// The names, rows of links marked, and the count below them.
  [[nodiscard]] std::string Rows() {
    std::string rows;
    for (int row = 2; row < View().Rows().Count(); ++row) {
      rows += View().Rows().At(row).Name() + View().Rows().At(row).SizeText() + ",";
    }
    return rows + std::to_string(window_->findChild<SmallView*>()->Count());
  }
};

TEST_F(Commands, AreEnabledByTheFirstSelectedRow) {
  const std::pair<int, QByteArray> disabled[] = {
      {-1,
       "Download File,Delete File,Rename File/Dir,Duplicate,Back,Forward,Change Dir,Stop,Open,Edit "
       "Text,View File,Show Properties…"},
      {2, "Duplicate,Back,Forward,Change Dir,Stop"},
      {3, "Duplicate,Back,Forward,Stop,Open,Edit Text,View File"}};
  for (const auto& [row, items] : disabled) {
    View().clearSelection();
    if (row >= 0) View().SelectRow(row);
    QByteArrayList found;
    for (const QAction* action : window_->findChildren<QAction*>()) {
      const auto* menu = qobject_cast<QMenu*>(action->parent());
      if (menu == nullptr || menu->title() != "&Commands" || action->isEnabled()) continue;
      if (!action->isSeparator()) found << action->text().remove('&').toUtf8();
    }
    EXPECT_EQ(found.join(','), items) << row;
    EXPECT_TRUE(row < 0 || View().SetupPopUpMenu()->actions()[1]->isEnabled() == (row == 2));
  }
}

TEST_F(Commands, CopyPutsUrlsOnTheClipboardAndDeselects) {
  View().SelectRow(2);
  Command(Qt::Key_C);
  EXPECT_EQ(QApplication::clipboard()->text(), "ftp://server.test/pub/b\n");
  EXPECT_EQ(View().SelectedCount(), 0);
}

TEST_F(Commands, DeleteAsksFirstAndSparesTheDots) {
  button_ = 1;
  Command(Qt::Key_A);
  Command(Qt::Key_T);
  QApplication::processEvents();
  EXPECT_EQ(View().SelectedCount(), 7);
  button_ = 0;
  Command(Qt::Key_T);
  EXPECT_TRUE(Asks("DELE path=/pub name=b name=dir name=link name=z name=\xE4"))
      << looper_->Asked();
  EXPECT_EQ(View().SelectedCount(), 0);
  ASSERT_EQ(alerts_.size(), 2U);
  View().SelectRow(1);
  Command(Qt::Key_T);
  EXPECT_EQ(alerts_.size(), 2U);
  View().SelectRow(6);
  link_->RemoveEntry("z", "/elsewhere");
  for (const char* name : {"dir", "b", "gone"}) link_->RemoveEntry(name, "/pub");
  EXPECT_TRUE(Wait([&] { return Rows() == "link <link>,z 5 B,\xE4 5 B,3"; })) << Rows();
  View().SetSortKey(DirListModel::kSize);
  EXPECT_EQ(View().Rows().At(View().FirstSelected()).Name(), "\xE4");
}

TEST_F(Commands, RenameKeepsBytesAndAsksBeforeItReplaces) {
  // The row, the new name, the button pressed, and what the connection is asked.
  const std::tuple<int, const char*, int, const char*> cases[] = {
      {6, "\u00FC", 0, "RNFL original=\xE4 renameto=\xC3\xBC path=/pub"},
      {2, "z", 1, "RNFL original=\xE4 renameto=\xC3\xBC path=/pub"},
      {2, "z", 0, "RNFL original=b renameto=z path=/pub"},
      {2, "", 0, "RNFL original=b renameto=z path=/pub"},
      {2, "../b", 0, "RNFL original=b renameto=../b path=/pub"},
  };
  for (const auto& [row, name, button, request] : cases) {
    button_ = button;
    View().SelectRow(row);
    window_->MessageReceived(Message("RNFW"_what));
    auto* asking = window_->findChild<RenameWin*>();
    Enter(&Line(asking, "RenameTo"), name);
    EXPECT_FALSE(asking->isVisible());
    EXPECT_TRUE(Asks(request)) << looper_->Asked();
  }
  EXPECT_EQ(alerts_.size(), 3U);
  EXPECT_EQ(std::ranges::count(looper_->Asked(), '\n'), 4) << "without a name no request";
  link_->RenameEntry("link", "b", "/elsewhere");
  link_->RenameEntry("b", "z", "/pub");
  link_->RenameEntry("link", "../l", "/pub");
  EXPECT_TRUE(Wait([&] { return Rows() == "z 5 B,dir <dir>,\xE4 5 B,3"; })) << Rows();
}

TEST_F(Commands, TheListingWaitsForANewDirectory) {
  for (const char* name : {"", "new"}) {
    Command(Qt::Key_M);
    Enter(window_->findChild<NewDir*>()->findChild<QLineEdit*>(), name);
    EXPECT_EQ(IsReady(), *name == '\0');
  }
  EXPECT_TRUE(Asks("MKDR name=new path=/pub"));
  EXPECT_TRUE(Wait([&] { return IsReady(); }));
}

TEST_F(Commands, FilesAndFoldersAreChosenTogetherForUpload) {
  const QDir folder(folder_.path());
  ASSERT_TRUE(QFile(folder.filePath("a b")).open(QFile::WriteOnly) && folder.mkdir("d"));
  // What is selected in the panel, and how many items of it are uploaded.
  for (const auto& [names, count] : {std::pair("\"a b\" \"d\"", 2U), std::pair("d", 1U)}) {
    Anew();
    PutInFront(*window_);
    Command(Qt::Key_U);
    const QPointer<UploadPanel> panel = window_->findChild<UploadPanel*>();
    panel->setDirectory(folder_.path());
    panel->findChild<QLineEdit*>()->setText(names);
    panel->findChild<QPushButton*>()->setFocus();
    panel->accept();
    EXPECT_TRUE(Begins());
    EXPECT_EQ(transfers_.empty() ? 0U : transfers_[0]->description.jobs.size(), count);
    delete panel.data();
  }
}

TEST_F(Commands, ALinkBecomesTheFileItLeadsTo) {
  for (const auto& [size, text] : {std::pair(500, "  <link>500 B"), {2048, " 2.00 KB"}}) {
    List({Link("l")});
    View().SelectRow(2);
    link_->ChangeValues("l", size);
    EXPECT_TRUE(Wait([&, wanted = text] { return View().Rows().At(2).SizeText() == wanted; }));
    EXPECT_EQ(window_->findChild<QLabel*>("Permissions")->text(), "-rwxrwxrwx");
    EXPECT_EQ(View().Rows().At(2).Type(), kFile);
  }
}

// Neither a loss nor a failed login afterwards takes the window or its rows away.
TEST_F(Commands, OffersToConnectAgain) {
  const auto* again = window_->findChild<QPushButton*>("ConnectAgain");
  std::string asked = "CNNT\n";
  for (const Message& happened :
       {With("LOST"_what, "warning", "gone"), With("FERR"_what, "error", "no answer")}) {
    link_->PostMessage(happened);
    ASSERT_TRUE(Wait([&] { return again->isVisible(); }));
    EXPECT_FALSE(IsReady());
    EXPECT_EQ(View().Rows().Count(), 7);
    QTest::mouseClick(window_->findChild<QPushButton*>("ConnectAgain"), Qt::LeftButton);
    asked += "RCNN path=/pub\n";
    EXPECT_TRUE(Wait([&] { return looper_->Asked() == asked; })) << looper_->Asked();
    EXPECT_FALSE(again->isVisible());
    link_->SetPath("/pub");
    EXPECT_TRUE(Wait([&] { return IsReady(); }));
  }
  link_->PostMessage(With("GERR"_what, "warning", "careful"));
  EXPECT_TRUE(Alerted(1));
}

TEST_F(Commands, AViewerKeepsCharactersWholeAndSaysWhatIsMissing) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  window_->move(screen.bottomRight() - QPoint(300, 200));
  const auto viewer = link_->OpenViewer(Text::Raw("v"));
  ASSERT_TRUE(Wait([&] { return window_->findChild<MViewFile*>() != nullptr; }));
  auto* shown = window_->findChild<MViewFile*>();
  EXPECT_TRUE(screen.contains(shown->geometry()));
  auto* text = shown->findChild<QPlainTextEdit*>();
  viewer->Append("one\ntw\xC3");
  QApplication::processEvents();
  viewer->Append("\xB6\n" + std::string(1500, 'x'));
  EXPECT_TRUE(Wait([&] { return text->blockCount() == 4; })) << text->blockCount();
  EXPECT_EQ(text->toPlainText().left(8), "one\ntw\u00F6\n");
  Command(Qt::Key_F);
  QTest::keyClick(shown, Qt::Key_F, Qt::ControlModifier);
  Enter(shown->findChild<QLineEdit*>(), "NE");
  EXPECT_EQ(text->textCursor().selectedText(), "ne");

  const auto* note = shown->findChild<QLabel*>("Note");
  viewer->End(Text("The file is not complete: %1", "cut"));
  EXPECT_TRUE(Wait([&] { return note->text() == "The file is not complete: cut"; }));
  const std::string line = std::string(1023, 'y') + '\n';
  std::size_t bytes = 1508;
  while (viewer->Append(line)) bytes += line.size();
  EXPECT_LE(bytes, ViewerLink::kMostBytes);
  EXPECT_TRUE(Wait([&] { return note->text() == "Only the first 8 MiB are shown."; }));
  shown->close();
  EXPECT_FALSE(viewer->Append("late"));
}

TEST_F(Commands, AViewerReadsEncodingsAndShowsPictures) {
  const auto open = [this] {
    delete window_->findChild<MViewFile*>();
    auto viewer = link_->OpenViewer(Text::Raw("v"));
    EXPECT_TRUE(Wait([&] { return window_->findChild<MViewFile*>() != nullptr; }));
    return viewer;
  };
  auto viewer = open();
  viewer->Append("\xC4\xF6\n" + std::string(20'000, 'x') + "\n");
  viewer->End({});
  auto* shown = window_->findChild<MViewFile*>();
  auto* text = shown->findChild<QPlainTextEdit*>();
  EXPECT_TRUE(Wait([&] { return text->toPlainText().size() > 20'000; }));
  EXPECT_TRUE(text->toPlainText().startsWith("\u00C4\u00F6\n"));
  auto* encodings = shown->findChild<QComboBox*>("TextEncoding");
  encodings->setCurrentIndex(encodings->findData(QByteArray("KOI8-R")));
  EXPECT_TRUE(Wait([&] { return text->toPlainText().size() > 20'000; }));
  EXPECT_TRUE(text->toPlainText().startsWith("\u0434\u0416\n"));

  QImage small(3, 2, QImage::Format_RGB32);
  small.fill(Qt::red);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  ASSERT_TRUE(small.save(&buffer, "PNG"));
  const std::string png = bytes.toStdString();
  std::string huge = png;
  huge.replace(16, 8, std::string("\0\0\xEA\x60\0\0\xEA\x60", 8));
  Digest sum(DigestKind::Crc32);
  sum.Add(std::span(huge).subspan(12, 17));
  huge.replace(29, 4, sum.Take());
  const std::tuple<std::string, const char*, bool> cases[] = {
      {png, "3 \u00D7 2 points", true},
      {png.substr(0, 20), "The picture cannot be shown.", false},
      {huge, "The picture has too many points to be shown.", false}};
  for (const auto& [contents, wanted, drawn] : cases) {
    const QString note = wanted;
    viewer = open();
    viewer->Append(contents.substr(0, 18));
    viewer->Append(contents.substr(18));
    viewer->End({});
    shown = window_->findChild<MViewFile*>();
    EXPECT_TRUE(Wait([&] { return shown->findChild<QLabel*>("Note")->text() == note; })) << wanted;
    EXPECT_EQ(shown->findChild<QWidget*>("Picture") != nullptr, drawn);
  }
}

}  // namespace
}  // namespace corvane
