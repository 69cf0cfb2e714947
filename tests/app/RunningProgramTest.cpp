#include "app/desktop/RunningProgram.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <atomic>
#include <csignal>
#include <functional>
#include <memory>
#include <thread>

#include "app/desktop/RequestServer.h"
#include "app/shared/OpenMessage.h"
#include "support/ScriptedServer.h"

namespace corvane {
namespace {

using Start = RunningProgram::Start;

/// A user's runtime directory, in which the first program runs already.
class Running : public testing::Test {
 protected:
  Running() {
    qputenv("XDG_RUNTIME_DIR", folder_.path().toUtf8());
    first_ = std::make_unique<RunningProgram>();
    EXPECT_EQ(first_->Begin({}), Start::First);
    server_ = std::make_unique<RequestServer>(first_->Listener(), [this](const Message& request) {
      taken_.push_back(request);
      return !quitting_;
    });
  }

  UniqueFd Connect() {
    UniqueFd peer(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    (folder_.path() + "/corvane/requests").toStdString().copy(address.sun_path, 107);
    EXPECT_EQ(::connect(peer.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    return peer;
  }
  /// All that is answered to `bytes`, until the server hangs up.
  std::string Answer(const std::string& bytes) {
    const UniqueFd peer = Connect();
    EXPECT_EQ(::send(peer.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), std::ssize(bytes));
    std::string text;
    char byte = 0;
    ssize_t got = 0;
    EXPECT_TRUE(QTest::qWaitFor([&] {
      while ((got = ::recv(peer.get(), &byte, 1, 0)) == 1) text += byte;
      return got == 0 || errno != EAGAIN;
    }));
    return text;
  }
  /// How a start ends while this thread serves; `meanwhile` is called first.
  Start Another(const std::vector<std::string>& arguments, std::function<void()> meanwhile = {}) {
    std::atomic<bool> done = false;
    Start result{};
    std::thread start([&] {
      result = RunningProgram().Begin(arguments);
      done = true;
    });
    if (meanwhile) meanwhile();
    EXPECT_TRUE(QTest::qWaitFor([&] { return done.load(); }, 20000));
    start.join();
    return result;
  }

  QTemporaryDir folder_;
  bool quitting_ = false;
  std::vector<Message> taken_;
  std::unique_ptr<RunningProgram> first_;
  std::unique_ptr<RequestServer> server_;
};

TEST_F(Running, TakesNothingButWholeRequests) {
  const std::string open = "open ftp://h/";
  const std::string longest = open + std::string(RequestServer::kLongest - open.size(), 'x');
  Message to("OPNC"_what);
  to.AddString("host", "h\n");
  Message other = to;
  other.what = "SHPF"_what;
  const std::string named = RequestServer::Named("a b_TIME1", "show");
  const std::string taken[] = {"show", open + "\xFC", longest, RequestServer::Line(to), named};
  std::vector<std::string> refused = {"",       "show\nshow",    "show\r",
                                      "open h", "open -deskbar", "open ftp://u:p@h:0"};
  refused.insert(refused.end(), {longest + "x", open + '\0', RequestServer::Line(other)});
  refused.insert(refused.end(), {RequestServer::Line(to) + "!", "message AAAA", "startup AAAA"});
  refused.insert(refused.end(), {"startup !! show", "startup AAAA " + named});
  for (const std::string& line : taken) EXPECT_EQ(Answer(line + "\n"), "ok\n") << line;
  for (const std::string& line : refused) EXPECT_EQ(Answer(line + "\n"), "no\n") << line;
  EXPECT_EQ(Answer(longest + longest), "no\n");
  EXPECT_EQ(Answer("show") + Answer(""), "");
  ASSERT_EQ(taken_.size(), std::size(taken));
  EXPECT_EQ(taken_[0].what, "SHMN"_what);
  EXPECT_EQ(taken_[1].FindString("path"), "/\xFC");
  EXPECT_EQ(taken_[3], to);
  EXPECT_EQ(taken_[4].FindString("startup"), "a b_TIME1");
}

TEST_F(Running, LaterStartsHandOverWhateverOthersDo) {
  std::vector<UniqueFd> silent;
  for (int i = 0; i < RequestServer::kMostPeers; ++i) silent.push_back(Connect());
  EXPECT_EQ(Another({"ftp://u:p@h:2121/x"}), Start::HandedOver);
  ASSERT_EQ(taken_.size(), 1U);
  EXPECT_TRUE(SiteIn(taken_[0]) ==
              (Site{.host = "h", .port = 2121, .user = "u", .password = "p", .path = "/x"}));
  EXPECT_EQ(Another({"ftp://h/" + std::string(RequestServer::kLongest, 'x')}), Start::Refused);
  EXPECT_EQ(taken_.size(), 1U);
}

TEST_F(Running, MakesRoomWhenItQuits) {
  quitting_ = true;
  const auto quit = [this] {
    EXPECT_TRUE(QTest::qWaitFor([this] { return !taken_.empty(); }));
    server_.reset();
    first_.reset();
  };
  EXPECT_EQ(Another({}, quit), Start::First);
}

TEST_F(Running, IsNotLookedForWhereOthersCanEnter) {
  QFile::setPermissions(folder_.path() + "/corvane", QFile::Permissions(0x7755));
  qputenv("XDG_CACHE_HOME", folder_.filePath("cache").toUtf8());
  EXPECT_EQ(Another({}), Start::First);
}

/// Starts of the real program by one user.
class Starts : public testing::Test {
 protected:
  QProcess& Run(const char* platform = "offscreen") {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "HOME", "TMPDIR"}) {
      environment.insert(name, folder_.path());
    }
    environment.insert("QT_QPA_PLATFORM", platform);
    auto& process = *processes_.emplace_back(std::make_unique<QProcess>());
    process.setProcessEnvironment(environment);
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process.start(CORVANE_PROGRAM, {"ftp://u:p@127.0.0.1:" + QString::number(server_.Port())});
    return process;
  }
  /// Whether so many have logged in.
  [[nodiscard]] bool Served(int users) const {
    const auto login = [](const std::string& line) { return line.starts_with("USER "); };
    const auto all = [&] { return std::ranges::count_if(server_.Transcript(), login) == users; };
    return QTest::qWaitFor(all, 30000);
  }
  /// The exit status of a start that is not to be the running program, and what it says.
  static QByteArray End(QProcess& process) {
    EXPECT_TRUE(process.waitForFinished());
    return QByteArray::number(process.exitCode()) + process.readAllStandardError();
  }

  QTemporaryDir folder_;
  ScriptedServer server_;
  std::vector<std::unique_ptr<QProcess>> processes_;  // killed at the end
};

TEST_F(Starts, AreOneProgramAlsoAfterAKill) {
  for (int i = 0; i < 6; ++i) Run();
  ASSERT_TRUE(Served(6)) << server_.Dialogue();
  const auto handedOver = [](const auto& process) {
    return process->state() == QProcess::NotRunning && process->exitCode() == 0;
  };
  EXPECT_TRUE(QTest::qWaitFor([&] { return std::ranges::count_if(processes_, handedOver) == 5; }));
  const auto first = std::ranges::find_if_not(processes_, handedOver);
  (*first)->kill();
  EXPECT_TRUE((*first)->waitForFinished());

  const QProcess& second = Run();
  ASSERT_TRUE(Served(7)) << server_.Dialogue();
  EXPECT_EQ(End(Run("none")), "0");  // handing over needs no display
  EXPECT_TRUE(Served(8)) << server_.Dialogue();
  const auto pid = static_cast<pid_t>(second.processId());
  ::kill(pid, SIGSTOP);
  EXPECT_EQ(End(Run()), "1Corvane runs already but does not answer.\n");
  ::kill(pid, SIGCONT);
  EXPECT_EQ(End(Run()), "0");
  EXPECT_TRUE(Served(9)) << server_.Dialogue();  // what was given up is not done later
}

}  // namespace
}  // namespace corvane
