#include <netinet/tcp.h>
#include <sys/socket.h>

#include <filesystem>
#include <future>
#include <span>
#include <thread>

#include "ftp/Session.h"
#include "net/NLEndpoint.h"
#include "net/Stream.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::literals;
namespace fs = std::filesystem;

// MKD takes its reply as it comes, and tells the last line's text of a refusal.
TEST(Control, ReadsRepliesWholeAndStaysInStep) {
  const std::string odd = "\xEC\x97\xAC\xEC";
  const std::tuple<ScriptedAction, std::string> cases[] = {
      {{.reply = "200\r\n"}, "Done"},
      {{.reply = "504-Welcome\r\n504-to the server\r\n504 Ready\r\n"}, "Ready"},
      // Only the reply's own code ends it, with a text or alone.
      {{.reply = "504-Hello\r\nThe end\r\n226 no end\r\n220\r\n   504 nor this\r\n504 Yes\n"},
       "Yes"},
      {{.reply = "504-Hello\r\n504\r\n"}, ""},
      // The byte is an end where nothing follows it, else a character's beginning.
      {{.reply = "504 Odd end\xEC"}, "Odd end\xEC"},
      {{.reply = "200\xEC"}, "Done"},
      {{.reply = "504 " + odd + "\xEA\xB0\x80\r\n"}, odd + "\xEA\xB0\x80"},
      {{.reply = "504-" + odd + "504 no end\r\n504 End\r\n"}, "End"},
      // What is no reply is passed over, and so is what comes unasked or twice.
      {{.reply = "Hey there\r\n\r\n504 Well\r\n"}, "Well"},
      {{.reply = "504 Well\r\nHey there\r\n"}, "Well"},
      {{.reply = "504 Well\r\n504 Well\r\n220-Unasked\r\n220 too\r\n"}, "Well"},
      {{.reply = "120 Wait\r\n504 Well\r\n"}, "Well"},
  };
  for (const bool byByte : {false, true}) {
    for (auto [action, text] : cases) {
      // What comes unasked is known for that where it comes with the reply, not behind it.
      if (byByte && action.reply->starts_with("504 Well")) continue;
      Session s;
      action.byteByByte = byByte;
      s.server.On("MKD", action);
      s.LogIn();
      const std::string failed = "Refused: The directory \"d\" was not created.";
      EXPECT_EQ(Told(s.engine.MakeDirectory("/d")),
                text == "Done" ? text : failed + (text.empty() ? "" : "\n\n") + text);
      EXPECT_TRUE(s.IsInStep()) << "after " << *action.reply;
    }
  }
}

TEST(Control, EndsOnWhatIsNoReply) {
  const std::string line(60'000, 'x');
  std::string endless;
  std::string many;
  for (int i = 0; i < 20; ++i) endless += "200-" + line + "\r\n";
  for (int i = 0; i < 2'000; ++i) many += "150 Wait\r\n";
  // Of SIZE, and in the end of LIST.
  const std::pair<ScriptedAction, std::string> cases[] = {
      {{.reply = "200 a", .control = ControlEnd::Close}, "The server closed the connection"},
      {{.reply = "", .control = ControlEnd::Reset}, "Connection reset by peer"},
      {{.reply = "200-" + line + "\r\n"}, "The server does not answer"},
      {{.reply = line + line}, "A line of the server's reply is too long"},
      {{.reply = endless}, "The server's reply is too long"},
      {{.reply = "421 Full\r\n"}, "closing control connection!\n\nFull"},
      {{.completion = many}, "The server does not stop replying"},
  };
  for (const auto& [action, error] : cases) {
    Session s;
    if (error.ends_with("does not answer")) s.engine.SetWaits(Waits::All(700));
    s.server.On(action.reply ? "SIZE" : "LIST", action);
    s.LogIn();
    std::optional<std::int64_t> size;
    const Outcome outcome = action.reply ? s.engine.Size("/f", size) : s.List();
    EXPECT_EQ(outcome.kind, Outcome::Kind::Lost);
    EXPECT_TRUE(outcome.text.English().ends_with(error)) << outcome.text.English();
    EXPECT_TRUE(s.engine.IsLost());
    EXPECT_EQ(s.engine.RemoveFile("/f").kind, Outcome::Kind::Lost);
    s.LogIn();
    EXPECT_TRUE(action.reply || s.IsInStep()) << "a connection anew";
  }
}

TEST(Control, PutsCommandsOnTheWireAsTheyAre) {
  Session s;
  s.LogIn();
  const std::string no =
      "LocalError: A name or text with a line break cannot be sent to the server.";
  EXPECT_EQ(Told(s.engine.RemoveFile("/a b")), "Refused: Cannot do that.");
  for (const auto& path : {"/a\nDELE b"s, "/a\rb"s, "/a\0b"s})
    EXPECT_EQ(Told(s.engine.RemoveFile(path)), no);
  EXPECT_EQ(s.Sent(), "DELE a b");
  const auto open = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
  const auto before = open();
  EXPECT_EQ(Told(s.Get("/a\nb")), no);
  EXPECT_EQ(open(), before) << "nothing listens for data that never comes";
  const std::string log = s.ui->Seen().log;
  EXPECT_NE(log.find("PASS\n"), std::string::npos);
  EXPECT_EQ(log.find("PASS p"), std::string::npos);
}

// Whoever has cancelled or says good-bye waits for a moment only, whatever the server does.
TEST(Control, DoesNotWaitForDribbleInAHurry) {
  struct Dribble : Stream {
    std::size_t read(std::span<char> buffer) override { return buffer[0] = 'x', 1; }
    void write(std::span<const char> /*bytes*/) override {}
    bool wait(long /*milliseconds*/) override { return std::this_thread::sleep_for(9ms), true; }
    void finish() override {}
    void abort() override {}
  } dribble;
  const auto begin = std::chrono::steady_clock::now();
  const std::atomic<bool> interrupted = true;
  EXPECT_FALSE(ReplyReader(dribble, interrupted).Read([](std::string_view) {}));
  Session s;
  s.server.On("QUIT", {.reply = "221 B"});
  s.LogIn();
  s.engine.Quit();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 4s);
}

TEST(Control, KeepsASilentConnectionAlive) {
  Session s;
  s.LogIn();
  int found = 0;
  for (int fd = 3; fd < 1024; ++fd) {
    sockaddr_in peer{};
    socklen_t length = sizeof peer;
    if (::getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &length) != 0) continue;
    if (ntohs(peer.sin_port) != s.server.Port()) continue;
    int on = 0;
    int seconds = 0;
    length = sizeof on;
    ::getsockopt(fd, SOL_SOCKET, SO_KEEPALIVE, &on, &length);
    ::getsockopt(fd, IPPROTO_TCP, TCP_KEEPIDLE, &seconds, &length);
    EXPECT_TRUE(on != 0 && seconds <= 60) << on << " " << seconds;
    ++found;
  }
  EXPECT_EQ(found, 1);
}

TEST(Login, ReportsEveryFailure) {
  const std::string gone = "Lost: Connection to:  127.0.0.1 FAILED!\n\n";
  const std::string refused = "Refused: Login to: 127.0.0.1 failed.\n";
  const std::string closing = "Service not available, closing control connection!\n\nFull";
  const std::string full = "Busy: The server takes no more connections at the moment: ";
  using Trouble = Outcome::Trouble;
  const std::tuple<std::string, ScriptedAction, std::string, Trouble> cases[] = {
      {"greeting", {.reply = "220 he", .control = ControlEnd::Reset}, gone + "*", Trouble::Other},
      {"greeting", {.reply = "421 Full\r\n"}, "Busy" + gone.substr(4) + closing, Trouble::Other},
      {"greeting", {.reply = "530 Full\r\n"}, gone + "Full", Trouble::Other},
      {"greeting",
       {.reply = "SSH-2.0-Server\r\n"},
       gone + "The server does not speak FTP",
       Trouble::Other},
      {"greeting", {.reply = ""}, gone + "The server does not answer", Trouble::NoAnswer},
      {"USER",
       {.reply = "530 No\r\n"},
       refused + "\nUsername is invalid\n\nNo",
       Trouble::RefusedLogin},
      {"USER", {.reply = "500 What?\r\n"}, refused + "\nWhat?", Trouble::RefusedLogin},
      {"PASS",
       {.reply = "530 No\r\n"},
       refused + "Invalid Username or Password.\n\nNo",
       Trouble::RefusedLogin},
      {"PASS", {.reply = "530 Too many users\r\n"}, full + "Too many users", Trouble::TooMany},
      {"greeting",
       {.reply = "421 2 users (the MAXIMUM) are logged in\r\n"},
       full + "2 users (the MAXIMUM) are logged in",
       Trouble::TooMany},
      {"USER", {.reply = "421 Connection limit\r\n"}, full + "Connection limit", Trouble::TooMany},
      {"PASS",
       {.reply = "530 Maximum login attempts exceeded\r\n"},
       refused + "Invalid Username or Password.\n\nMaximum login attempts exceeded",
       Trouble::RefusedLogin},
      {"PASS",
       {.reply = "550 No\r\n"},
       "Refused: Login to: 127.0.0.1 as anonymous failed.\n\nNo",
       Trouble::RefusedLogin},
      {"PASS", {.reply = "503 USER first\r\n"}, refused + "\nUSER first", Trouble::RefusedLogin},
      {"PASS", {.reply = "", .control = ControlEnd::Reset}, gone + "*", Trouble::Other},
  };
  for (const auto& [verb, action, told, trouble] : cases) {
    Session s;
    s.server.On(verb, action);
    if (action.reply == "") s.engine.SetWaits(Waits::All(300));
    const Outcome outcome = s.engine.Connect();
    const std::string result = Told(outcome);
    const bool any = told.ends_with("*");
    EXPECT_TRUE(any ? result.starts_with(told.substr(0, told.size() - 1)) : result == told)
        << verb << *action.reply << result;
    EXPECT_EQ(outcome.trouble, trouble) << verb << *action.reply;
    const std::string reply = action.reply->substr(0, action.reply->find('\r'));
    EXPECT_EQ(outcome.server, outcome.code != 0 ? reply : "");
    EXPECT_EQ(s.ui->Seen().sounds.empty(),
              verb == "greeting" || told.find("Connection to") != std::string::npos);
    EXPECT_EQ(s.server.Transcript().size(), verb == "greeting" ? 0U : verb == "USER" ? 2U : 3U);
    EXPECT_TRUE(s.engine.IsLost());
  }
}

TEST(Login, FailsWithoutAServer) {
  const auto ui = std::make_shared<RecordingBrowserUi>();
  const std::uint16_t port = ScriptedServer().Port();
  const Outcome refused = MFtp({.host = "127.0.0.1", .port = port}, ui).Connect();
  EXPECT_EQ(Told(refused), "Lost: Connection to:  127.0.0.1 FAILED!\n\nConnection refused");
  EXPECT_EQ(refused.trouble, Outcome::Trouble::RefusedPort);
  const Outcome unknown = MFtp({.host = "no-such-host.invalid"}, ui).Connect();
  EXPECT_EQ(Told(unknown),
            "LocalError: Could not resolve the address for:\n\n no-such-host.invalid");
  EXPECT_EQ(unknown.trouble, Outcome::Trouble::UnknownName);
}

// What an entry is told as, by servers that know more or less.
TEST(Features, TellOfAnEntry) {
  const std::string line = "-rw-r----- 1 ann web 7 Mar 14 2020 f\r\n";
  const std::string facts =
      "250-f\r\n Type=file;Size=9;Modify=20200314092600.5;UNIX.mode=0640;UNIX.ownername=bob;"
      "UNIX.owner=7; /f\r\n250 End\r\n";
  const ScriptedAction no = {.reply = "500 What?\r\n"};
  struct Case {
    std::optional<std::string> mlst;
    ScriptedAction size;
    std::string listing;
    std::string told;  // kind, size, mode, owner, time; or why not
  };
  const Case cases[] = {
      {facts, no, line, "1 9 -rw-r----- bob 1584177960"},
      {facts, no, "", "1 9 -rw-r----- bob 1584177960"},
      {"250-d\r\n type=dir;size=4096;modify=20200314092600; d\r\n250 End\r\n", no, line,
       "2 - - - 1584177960"},
      {"250-l\r\n type=dir;modify=20200314092600; l\r\n250 End\r\n", no,
       "lrwxrwxrwx 1 ann web 7 Mar 14 2020 f -> g\r\n", "3 - lrwxrwxrwx ann 1584144000"},
      {"550 None\r\n", no, line, "None"},
      {"250 What?\r\n", no, line, "1 7 -rw-r----- ann 1584144000"},
      {{}, {.reply = "213 8\r\n"}, line, "1 8 -rw-r----- ann 1584144000"},
      {{}, {.reply = "213 8\r\n"}, line + line, "1 8 - - 1584177960"},
      {{}, {.reply = "213 8\r\n"}, "-rw-r----- 1 u g 7 Mar 14 2020 g\r\n", "1 8 - - 1584177960"},
      {{}, no, line, "1 7 -rw-r----- ann 1584144000"},
      {{},
       {.reply = "550 No file\r\n"},
       "drwxr-xr-x 1 ann web 0 Mar 14 2020 f\r\n",
       "2 - drwxr-xr-x ann 1584144000"},
      {{}, {.reply = "550 No file\r\n"}, line, "The server does not tell about f."},
  };
  for (const Case& c : cases) {
    Session s(true);
    if (c.mlst) s.server.On("FEAT", {.reply = "211-Has\r\n MLST Type*;\r\n211 End\r\n"});
    if (c.mlst) s.server.On("MLST", {.reply = *c.mlst});
    s.server.On("SIZE", c.size);
    s.server.On("MDTM", {.reply = "213 20200314092600\r\n"});
    s.server.On("LIST", {.data = c.listing});
    s.LogIn();
    RemoteEntry entry;
    const Outcome outcome = s.engine.Stat("/f", entry);
    const auto text = [](const std::string& field) { return field.empty() ? "-" : field; };
    std::string told = std::to_string(static_cast<int>(entry.kind)) + " " +
                       (entry.size ? std::to_string(*entry.size) : "-") + " " + text(entry.mode) +
                       " " + text(entry.owner) + " " +
                       (entry.modified ? std::to_string(entry.modified->seconds) : "-");
    if (!outcome.IsDone()) told = outcome.text.Reason().English();
    EXPECT_EQ(told, c.told) << s.server.Dialogue();
  }
}

// What the list of features has the login say, on a server that serves several hosts.
TEST(Features, AreAskedForOnce) {
  const auto list = [](const std::string& lines) { return "211-Has\r\n" + lines + "211 End\r\n"; };
  const std::string end = "SYST|PWD|TYPE I";
  std::string garbage;
  for (int i = 0; i < 4'000; ++i) garbage += " MLST type;\xFF=;;*\r\n";
  // FEAT before the login, and after it; what is sent.
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"500 What?\r\n", "", "FEAT|USER u|PASS p|" + end},
      {"530 Log in\r\n", list(" UTF8\r\n HOST\r\n"), "FEAT|USER u|PASS p|FEAT|OPTS UTF8 ON|" + end},
      {"550 Log in\r\n", "550 No\r\n", "FEAT|USER u|PASS p|FEAT|" + end},
      {list(" host\r\n UTF8\r\n"), "", "FEAT|HOST localhost|USER u|PASS p|OPTS UTF8 ON|" + end},
      {list(" MLST type*;Size*;perm;\r\n"), "", "FEAT|USER u|PASS p|" + end},
      {list(" MLST Type*;Size;Perm*;UNIX.mode*;\r\n"), "",
       "FEAT|USER u|PASS p|OPTS MLST type;size;unix.mode;|" + end},
      {list("MLST type;\r\n MLST\r\n\r\n MLSD\r\n MLST size\r\n"), "", "FEAT|USER u|PASS p|" + end},
      {list(garbage), "", "FEAT|USER u|PASS p|OPTS MLST type;|" + end},
      {"211 " + std::string(70'000, 'x'), "", "FEAT"},
  };
  for (const auto& [before, after, sent] : cases) {
    Session s;
    s.server.On("FEAT", {.reply = before}, 1);
    s.server.On("FEAT", {.reply = after}, 2);
    s.server.On("HOST", {.reply = "504 Unknown\r\n"});
    Site site = s.server.Where(false);
    site.host = "localhost";
    MFtp engine(site, s.ui);
    EXPECT_EQ(engine.Connect().IsDone(), sent != "FEAT");
    EXPECT_EQ(s.Sent(), sent);
  }
}

// A server that knows several ways to set a time, and what becomes of those that it refuses.
TEST(Features, SetTimes) {
  // The features; the replies to MFMT, MDTM and SITE; what is sent for two files.
  const std::string mfmt = "MFMT 20010909014640 f";
  const std::string mdtm = "MDTM 20010909014640 f";
  const std::string site = "SITE UTIME f 20010909014640 20010909014640 20010909014640 UTC";
  const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
      {" MFMT\r\n MDTM\r\n", "213 Modify=20010909014640; f", "Done", mfmt + "|" + mfmt},
      {" MFMT\r\n MDTM\r\n", "550 No", "Refused", mfmt + "|" + mfmt},
      {" MFMT\r\n SITE UTIME\r\n", "500 What?", "Refused", mfmt + "|" + site},
      {" MDTM\r\n SITE UTIME\r\n", "253 Set", "Done", mdtm + "|" + mdtm},
      {" SIZE\r\n", "200 Set", "Refused", ""},
  };
  for (const auto& [features, reply, told, sent] : cases) {
    Session s;
    s.server.On("FEAT", {.reply = "211-Has\r\n" + features + "211 End\r\n"});
    for (const char* verb : {"MFMT", "MDTM", "SITE"}) s.server.On(verb, {.reply = reply + "\r\n"});
    s.LogIn();
    for (int i = 0; i < 2; ++i) {
      const Outcome outcome = s.engine.SetModifiedTime("/f", 1'000'000'000);
      EXPECT_TRUE(Told(outcome).starts_with(told)) << Told(outcome);
    }
    EXPECT_EQ(s.Sent(), sent);
  }
}

// A name that begins with a date is not to set another file's time.
TEST(Features, TellTimes) {
  Session s;
  s.server.On("MDTM", {.reply = "213 20010909014640.5\r\n"});
  s.server.On("MDTM", {.reply = "502 No\r\n"}, 3);
  s.LogIn();
  std::optional<RemoteTime> time;
  for (const char* name : {"/f", "/20010909014640 f", "/g", "/h"}) {
    EXPECT_TRUE(s.engine.ModifiedTime(name, time).IsDone());
    EXPECT_EQ(time.has_value() && time->seconds == 1'000'000'000 && time->utc,
              name[2] != '\0' || name[1] == 'f');
  }
  EXPECT_EQ(s.Sent(), "MDTM f|MDTM ./20010909014640 f|MDTM g");
}

TEST(Features, TellOfFreeSpace) {
  const std::string quota = "200-Quota [current/limit]:\r\n Name: ann\r\n";
  // FEAT, the question's reply, the answer, and what is sent for two questions.
  const std::tuple<std::string, std::string, std::optional<std::int64_t>, std::string> cases[] = {
      {" AVBL", "213 7000000000\r\n", 7'000'000'000, "CWD d|AVBL|AVBL"},
      {" avbl", "550 No\r\n", {}, "CWD d|AVBL|AVBL"},
      {"", quota + "   Uploaded Kb:\t1.50/10.00\r\n200 Ask.\r\n", 8704, "SITE QUOTA|SITE QUOTA"},
      {"", quota + "   Uploaded bytes:\t20.00/10.00\r\n200 Ask.\r\n", 0, "SITE QUOTA|SITE QUOTA"},
      {"", quota + "   Uploaded bytes:\tunlimited\r\n200 Ask.\r\n", {}, "SITE QUOTA"},
      {"", "500 What?\r\n", {}, "SITE QUOTA"},
  };
  for (const auto& [feature, reply, bytes, sent] : cases) {
    Session s;
    s.server.Tree().AddDirectory("/d");
    s.server.On("FEAT", {.reply = "211-Has\r\n" + feature + "\r\n211 End\r\n"});
    s.server.On("AVBL", {.reply = reply});
    s.server.On("SITE", {.reply = reply});
    s.LogIn();
    std::optional<std::int64_t> told;
    for (int i = 0; i < 2; ++i) (void)s.engine.FreeSpace("/d", told);
    EXPECT_EQ(s.Sent(), sent);
    EXPECT_EQ(told, bytes) << reply;
  }
}

TEST(Login, GoesThroughAProxy) {
  // Without the proxy's address the server itself is asked, still by the proxy's form of the name.
  for (const std::string host : {"ftp.example", "127.0.0.1"}) {
    Session s;
    const Proxy proxy{host == "127.0.0.1" ? "" : "127.0.0.1", s.server.Port()};
    Site site = s.server.Where(false);
    site.host = host;
    site.proxy = proxy;
    MFtp engine(site, s.ui);
    EXPECT_TRUE(engine.Connect().IsDone());
    EXPECT_EQ(s.server.Transcript().at(0), "USER u@" + host + "\r\n");
  }
}

// A proxy that is to be passed through is never bypassed, and one that is silent is cancelled.
TEST(Login, NeedsAProxyThatIsThere) {
  const std::pair<std::string, std::string> hosts[] = {
      {"", "LocalError: The preferences name no address for the proxy."},
      {"nowhere.invalid",
       "LocalError: Could not resolve the address for the proxy:\n\n nowhere.invalid"},
      {"127.0.0.1",
       "Lost: Connection to:  127.0.0.1 FAILED!\n\nThe proxy cannot be reached: Connection "
       "refused"},
  };
  NLEndpoint silent(NLEndpoint::stream);
  silent.bind(NLAddress("127.0.0.1", 0));
  for (const Proxy::Kind kind : {Proxy::Kind::Socks5, Proxy::Kind::Http}) {
    Session s;
    Site site = s.server.Where(true);
    for (const auto& [host, told] : hosts) {
      site.proxy = Proxy{host, 1, kind};
      EXPECT_EQ(Told(MFtp(site, s.ui).Connect()), told);
    }
    silent.listen(5);
    site.proxy = Proxy{"127.0.0.1", silent.localAddress().port(), kind};
    for (const bool close : {false, true}) {
      MFtp engine(site, s.ui);
      auto connecting = std::async(std::launch::async, [&] { return engine.Connect(); });
      const auto reached = silent.accept(5'000);
      ASSERT_TRUE(reached);
      char byte = 0;
      EXPECT_EQ(reached->read({&byte, 1}), 1);
      close ? engine.Close() : engine.Interrupt();
      ASSERT_EQ(connecting.wait_for(500ms), std::future_status::ready);
      EXPECT_EQ(connecting.get().kind, Outcome::Kind::Cancelled);
    }
    EXPECT_TRUE(s.server.Transcript().empty());
  }
}

TEST(Login, LearnsTheServerAndItsDirectoryOnEveryConnection) {
  const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
      {"215 UNIX Type: L8", "257 \"/a \"\"b\"\" c\" x", "/a \"b\" c", "LIST -la"},
      {"215 UNIX AppleShare IP FTP Server", "257 /plain", "/plain", "LIST"},
      {"500 What?", "502 No", "", "LIST -la"},
      {"215", "257 \"", "", "LIST -la"},
      {"215", "257 /" + std::string(5'000, 'a'), "", "LIST -la"},
      {"215", "257 /plain and more", "", "LIST -la"},
      {"215", "250 \"/a\"", "", "LIST -la"},
      {"215", "257 You are in \"/a\", not in \"/b\"", "/a", "LIST -la"},
      {"215", "257 \"/a \"b\" c\" x", "", "LIST -la"},
      {"215", "257 \"A.B\" is working directory", "A.B", "LIST -la"},
      {"215 Windows_NT version 4.0", "257 \"/\" is current", "/", "LIST"},
  };
  for (const auto& [syst, pwd, path, list] : cases) {
    Session s(true);
    s.server.On("greeting", {.reply = "Welcome!\r\n120 Soon\r\n220 Ready\r\n"});
    s.server.On("SYST", {.reply = syst + "\r\n"});
    s.server.On("PWD", {.reply = pwd + "\r\n"});
    // The command toggles: the style that the first connection finds is switched back on.
    const std::string style = "200 MSDOS-like directory output is ";
    s.server.On("SITE", {.reply = style + "off\r\n"});
    s.server.On("SITE", {.reply = style + "on\r\n"}, 1);
    for (int login = 0; login < 2; ++login) {
      s.LogIn();
      EXPECT_EQ(s.engine.Directory(), path) << pwd;
      EXPECT_TRUE(s.List(path).IsDone());
      EXPECT_TRUE(s.Sent().ends_with("|" + list)) << s.Sent();
      EXPECT_TRUE(s.IsInStep());
    }
    s.skip = 0;
    const bool windows = syst.find("Windows") != std::string::npos;
    EXPECT_EQ(s.Sent("SITE"), windows ? "SITE DIRSTYLE|SITE DIRSTYLE|SITE DIRSTYLE" : "");
  }
}

TEST(Directories, AreEnteredByTheShortestWay) {
  const std::tuple<std::string, std::vector<std::string>, std::string> cases[] = {
      {"257 \"/a\"",
       {"/a", "/a/b", "/a", "/x/y", "/x/y/", "/x/z", "/"},
       "CWD b|CWD ..|CWD /x/y|CWD /x/z|CWD /"},
      {"502 No",
       {"", "a/b", "a/b", "c", "c/d", "c", ""},
       "CWD a|CWD b|CWD ..|CWD ..|CWD c|CWD d|CWD ..|CWD .."},
  };
  for (const auto& [pwd, paths, sent] : cases) {
    Session s;
    s.server.On("PWD", {.reply = pwd + "\r\n"});
    s.server.On("CWD", {.reply = "250 Fine\r\n"});
    s.LogIn();
    for (const std::string& path : paths)
      EXPECT_EQ(s.engine.RemoveFile(path + (path.empty() || path == "/" ? "f" : "/f")).code, 550);
    EXPECT_EQ(s.Sent("CWD"), sent);
  }
  Session s;
  s.server.Tree().AddFile("/a/f", "");
  s.server.Tree().AddLink("/l", "/a");
  s.LogIn();
  EXPECT_EQ(Told(s.engine.RemoveFile("/none/f")),
            "Refused: The directory cannot be opened.\n\nCannot do that.");
  EXPECT_EQ(s.engine.Rename("/a/none", "/g").kind, Outcome::Kind::Refused);
  EXPECT_EQ(s.Sent(), "CWD none|CWD a|RNFR none");
  std::string where;
  EXPECT_EQ(s.engine.RemoveFile("/l/x").code, 550);
  EXPECT_TRUE(s.engine.Enter("/l", where).IsDone());
  EXPECT_EQ(where, "/a") << "the server is asked where a link led";
  s.server.On("PWD", {.reply = "502 No\r\n"});
  s.LogIn();
  EXPECT_TRUE(s.engine.Enter("/", where).IsDone());
  EXPECT_EQ(s.List("").kind, Outcome::Kind::Refused) << "where that is nobody knows";
}

}  // namespace
}  // namespace corvane
