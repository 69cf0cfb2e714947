#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServer>

#include "AppFixture.h"
#include "app/browser/BrowserTransfers.h"
#include "app/browser/DragData.h"
#include "app/browser/ExtractService.h"

namespace corvane {
namespace {

using std::string_literals::operator""s;

class Drag : public AppFixture {
 protected:
  Drag() {
    UseClassicStyle();
    List({File("one"), File("two"), Folder("dir")});
  }
  /// Presses on a row and pulls it; the platform of these tests drags nothing, so that every drag
  /// ends outside at once. Whether the window then asked where to save.
  bool Pull(int row, Qt::MouseButton button = Qt::LeftButton) {
    QWindow* window = window_->windowHandle();
    const QPoint from = View().viewport()->mapTo(
        window_, View().visualRect(View().Rows().index(row, DirListModel::kName)).center());
    QTest::mousePress(window, button, {}, from);
    QTest::mouseMove(window, from + QPoint(0, 5));
    QTest::mouseMove(window, from + QPoint(0, 40));
    for (int turn = 0; turn < 5; ++turn) QCoreApplication::processEvents();
    if (QWidget* menu = QApplication::activePopupWidget()) menu->close();
    QTest::mouseRelease(window, button, {}, from);
    return !Panel().isNull();
  }
  [[nodiscard]] QPointer<QFileDialog> Panel() const { return window_->findChild<QFileDialog*>(); }
};

TEST_F(Drag, RowsButTheDotsCanBePulledWithTheLeftButton) {
  EXPECT_FALSE(Pull(0) || Pull(1) || Pull(2, Qt::RightButton) || Pull(2, Qt::MiddleButton));
  View().DisableAll();
  EXPECT_FALSE(Pull(2));
  View().EnableAll();
  View().selectAll();
  ASSERT_TRUE(Pull(3));
  List({File("new")});  // too late to change what is dragged
  Q_EMIT Panel()->fileSelected(folder_.path());
  ASSERT_TRUE(Begins());
  EXPECT_EQ(Moved(), "dir/>/dir+ one>/one+ two>/two+");
}

TEST_F(Drag, AFolderIsDownloadedIntoOnlyWhenItIsThere) {
  BrowserTransfers::Chosen request = window_->Transfers().Named("one");
  const std::string folder = folder_.path().toStdString();
  ASSERT_TRUE(QFile(folder_.filePath("file")).open(QFile::WriteOnly));
  for (const char* wrong : {"/missing", "/file"}) {
    Anew();
    window_->Transfers().DownloadInto(folder + wrong, request);
    EXPECT_TRUE(Alerted(1)) << wrong;
    EXPECT_EQ(Moved(), "");
  }
  ASSERT_TRUE(Panel().isNull());
  request.entries[0].local = "a/b";  // the panel can give it another name
  window_->Transfers().DownloadInto(folder, request);
  EXPECT_FALSE(Panel().isNull());
}

TEST(DragData, BelievesOnlyUrlsOfThisMachine) {
  const std::string host = QSysInfo::machineHostName().toStdString();
  std::vector<std::tuple<std::string, const char*, const char*>> cases = {
      {"name", "", ""},
      {"file:///tmp/a%20b/%C3%A9%ff/name", "S", "/tmp/a b/\xc3\xa9\xff"},
      {"file://" + host + "/a/name", "S", "/a"},
      {"FILE://localhost/name", "S", "/"},
  };
  for (const std::string& wrong :
       {"file://elsewhere.test/a/name"s, "file://"s, "file:///a%00/name"s, "file:///a%0a/name"s,
        "file:///a\0/name"s, "file:///a%+1/name"s, "file:///a/name%2"s, "file:///a/name?query"s}) {
    cases.emplace_back(wrong, "E", "");
  }
  for (const auto& [property, answer, folder] : cases) {
    std::string told;
    const DragData data({.property = [&text = property] { return text; }, .name = "name"},
                        [&](const std::string& where) { told = where; });
    EXPECT_EQ(data.data("XdndDirectSave0"), answer) << property;
    EXPECT_EQ(told, folder) << property;
    EXPECT_FALSE(data.hasUrls() || data.hasText());
  }
}

TEST(ExtractService, ListensAsLongAsItLives) {
  QDBusServer server("unix:tmpdir=" + QDir::tempPath());
  server.setAnonymousAuthenticationAllowed(true);
  std::optional<QDBusConnection> bus;
  QObject::connect(&server, &QDBusServer::newConnection, &server,
                   [&](const QDBusConnection& connection) { bus = connection; });
  QDBusConnection caller = QDBusConnection::connectToPeer(server.address(), "caller");
  ASSERT_TRUE(QTest::qWaitFor([&] { return bus.has_value(); }));
  std::string told;
  std::optional<ExtractService> service;
  service.emplace(*bus, [&](const std::string& folder) { told += folder + ";"; });
  const QString path = service->Path();
  EXPECT_NE(path, ExtractService(*bus, {}).Path());
  const auto call = [&](const QString& folder) {
    auto message = QDBusMessage::createMethodCall({}, path, "org.kde.ark.DndExtract",
                                                  "extractSelectedFilesTo");
    const QDBusPendingCall answer = caller.asyncCall(message << folder);
    return QTest::qWaitFor([&] { return answer.isFinished(); }) && !answer.isError();
  };
  EXPECT_TRUE(call("relative") && call("") && call("/a\xcc\x88 b"));
  EXPECT_EQ(told, "/a\xcc\x88 b;");
  service.reset();
  EXPECT_FALSE(call("/late"));
  QDBusConnection::disconnectFromPeer("caller");
}

TEST_F(Drag, TakesLocalFilesAndNothingElse) {
  using enum Qt::DropAction;
  const std::tuple<const char*, Qt::DropActions, bool, const char*, std::size_t> cases[] = {
      {"# x\r\nfile:///%C3%BC%20\r\nfile:///d/\r\n", CopyAction | MoveAction, true,
       "/\xc3\xbc >\xc3\xbc + /d>d+", 0},
      {"file:///a\nhttp://host/b\nfile://elsewhere.test/c", CopyAction, true, "/a>a+", 1},
      {"file:///a", MoveAction, false, "", 0},
      {"file:///of%20rows", CopyAction, false, "", 0},
      {"file:///disabled", CopyAction, false, "", 0},
  };
  for (const auto& [urls, offered, welcome, uploads, alerts] : cases) {
    QMimeData data;
    data.setData("text/uri-list", urls);
    data.setText(urls);
    if (data.text().contains("rows")) data.setData(DragData::kRows, "");
    if (data.text().contains("disabled")) View().DisableAll();
    Anew();
    for (QWidget* over : {View().viewport(), window_->findChild<QWidget*>("Path")}) {
      QDragEnterEvent enter({5, 5}, offered, &data, Qt::LeftButton, {});
      QApplication::sendEvent(over, &enter);
      EXPECT_EQ(enter.isAccepted(), welcome) << urls;
    }
    QDropEvent drop({5, 5}, offered, &data, Qt::LeftButton, {});
    QApplication::sendEvent(window_, &drop);
    EXPECT_TRUE(!drop.isAccepted() || drop.dropAction() == CopyAction) << urls;
    EXPECT_TRUE(*uploads == '\0' || Begins());
    EXPECT_EQ(Moved(), uploads) << urls;
    EXPECT_EQ(alerts_.size(), alerts) << urls;
  }
}

}  // namespace
}  // namespace corvane
