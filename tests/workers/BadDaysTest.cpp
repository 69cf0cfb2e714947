#include "workers/TransferJob.h"

// Servers, networks and disks that fail in the middle: how a row ends, and what it has then.

namespace corvane {
namespace {

using namespace std::chrono_literals;

constexpr char kHashes[] = "211-Has\r\n HASH SHA-256\r\n211 End\r\n";
constexpr char kHashOfF[] =
    "213 SHA-256 0-10 84d89877f0d4041efb6bf91a16f0248f2fd573e6af05c19f96bedb9f882f7882 f\r\n";

// A server that reads its file for a checksum is waited for, one that says nothing is not, and
// after a change of the network only for a moment.
TEST(BadDays, SilenceIsALossUnlessTheServerHasWork) {
  const ScriptedAction stalls = {.dataLimit = 3, .dataEnd = DataEnd::Stall};
  struct Case {
    const char* name;
    const char* verb;
    ScriptedAction action;
    std::chrono::milliseconds limit;
    bool checks;  // the network changes
    bool lost;
  };
  const Case cases[] = {
      {"checksum", "HASH", {.reply = kHashOfF, .late = true}, 300ms, false, false},
      {"checksum, network changed", "HASH", {.reply = kHashOfF, .late = true}, 60s, true, false},
      {"silent", "RETR", stalls, 300ms, false, true},
      {"silent, network changed", "RETR", stalls, 60s, true, true},
      {"silent in the end", "RETR", {.completion = ""}, 300ms, false, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Job job;
    job.server.On("FEAT", {.reply = kHashes});
    job.server.On("OPTS", {.reply = "200 Yes\r\n"});
    std::atomic<bool> arrived = false;
    ScriptedAction action = c.action;
    action.arrived = [&] { arrived = true; };
    job.server.On(c.verb, action, 1);
    job.Fetch("f");
    const auto begin = std::chrono::steady_clock::now();
    job.Start(c.limit);
    EXPECT_TRUE(WaitFor([&] { return arrived.load() && job.row->Progress().moved > 0; }));
    if (c.checks) job.worker->CheckConnections();
    EXPECT_EQ(job.Wait(), c.lost ? TransferEnd::Again : TransferEnd::Finished);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
    EXPECT_EQ(job.row->Seen().why.find("Nothing comes from the server") != std::string::npos,
              c.lost)
        << job.row->Seen().why << job.server.Dialogue();
  }
}

// What is uploaded may stop to be taken.
TEST(BadDays, AServerThatTakesNothingAnyMoreIsLost) {
  Job job;
  Write(job.folder.Path() / "big", Bytes(20'000'000));
  job.Send("big");
  job.server.On("STOR", {.dataLimit = 3, .dataEnd = DataEnd::Stall}, 1);
  job.Start(300ms);
  EXPECT_EQ(job.Wait(), TransferEnd::Again) << job.row->Seen().why;
}

// A name that cannot be sent, or used, fails by itself: nothing of it reaches the server or the
// disk, the rest comes, and the row says how many failed.
TEST(BadDays, NamesThatCannotBeUsedFailAlone) {
  const std::string tooLong(5000, 'n');
  const auto line = [](char type, const std::string& name) {
    return type + ("rwxr-xr-x 1 u g 4 Jan 12 10:00 " + name) + "\r\n";
  };
  enum class How { Chosen, Sent, Listed };
  const std::tuple<How, std::string, const char*> cases[] = {
      {How::Chosen, "a\nDELE f", "line"},
      {How::Chosen, "a\rb", "line"},
      {How::Sent, "a\nDELE f", "line"},
      {How::Sent, "a\rb", "line"},
      {How::Listed, line('-', tooLong), "longer than 4096 bytes"},
      {How::Listed, line('d', tooLong) + line('-', tooLong + "2"), "longer than 4096 bytes"},
  };
  for (const auto& [how, name, why] : cases) {
    Job job;
    int failures = 1;
    job.server.Tree().AddFile("/pub/d/ok", "good");
    if (how == How::Chosen) {
      job.Fetch(name);
      job.Fetch("d", RemoteEntry::Kind::Directory);
    } else if (how == How::Sent) {
      for (const std::string& file : {name, std::string("ok")})
        Write(job.folder.Path() / "d" / file, "good");
      job.server.Tree().Remove("/pub/d/ok", false);
      job.Send("d");
    } else {
      job.server.On("LIST", {.data = name + line('-', "ok")}, 1);
      job.Fetch("d", RemoteEntry::Kind::Directory);
      failures = static_cast<int>(std::ranges::count(name, '\n'));
    }
    for (const int run : {1, 2}) {
      SCOPED_TRACE(name.substr(0, 40) + std::to_string(run));
      EXPECT_EQ(job.Run(), TransferEnd::Failed);
      EXPECT_NE(job.Notes().find(why), std::string::npos) << job.Notes();
      EXPECT_LT(job.row->Seen().why.size(), 2000U);
      EXPECT_EQ(job.board->Counted().failed, failures) << job.row->Seen().why;
      EXPECT_EQ(Contents(job.folder.Path() / "d" / "ok"), "good");
      EXPECT_EQ(job.server.Tree().File("/pub/d/ok"), "good");
      EXPECT_TRUE(job.server.Tree().Exists("/pub/f"));
      job.board->Begin(true);
      job.row = std::make_shared<RecordingTransferUi>();
    }
  }
}

// Tries are used up where a row gets no further than it was, however many bytes have moved.
TEST(BadDays, OnlyGettingFurtherIsProgress) {
  const ScriptedAction cut = {.dataLimit = 3, .completion = "", .control = ControlEnd::Close};
  struct Case {
    const char* name;
    const char* verb;
    ScriptedAction action;
    bool resumes;
    std::string advanced;  // in three tries
  };
  const Case cases[] = {
      {"cut, and goes on", "RETR", cut, true, "yyy"},
      {"cut, and begins anew", "RETR", cut, false, "ynn"},
      {"nothing comes", "RETR", {.reply = "", .control = ControlEnd::Close}, true, "nnn"},
      {"no login", "PASS", {.reply = "421 Later\r\n"}, true, "nnn"},
      {"short", "RETR", {.dataLimit = 3, .completion = "226 Done\r\n"}, false, "ynn"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Job job;
    if (!c.resumes) job.server.On("REST", {.reply = "502 No\r\n"});
    for (int i = 1; i <= 3; ++i) {
      ScriptedAction action = c.action;
      if (c.resumes && action.dataLimit == 3) action.dataLimit *= static_cast<std::size_t>(i);
      job.server.On(c.verb, action, i);
    }
    job.Fetch("f");
    std::string advanced;
    for (int i = 0; i < 3; ++i) {
      job.row = std::make_shared<RecordingTransferUi>();
      job.Start();
      EXPECT_EQ(job.Wait(), TransferEnd::Again) << job.row->Seen().why;
      advanced += job.row->Progress().advanced ? 'y' : 'n';
    }
    EXPECT_EQ(advanced, c.advanced) << job.server.Dialogue();
  }
}

// The row says what is known of the file of which least is known.
TEST(BadDays, TheLeastProofIsTheRows) {
  const std::tuple<const char*, const char*, Proof> cases[] = {
      {kHashOfF, "213 1\r\n", Proof::Sha256},
      {"550 No\r\n", "213 1\r\n", Proof::Size},
      {"550 No\r\n", "550 No\r\n", Proof::None},
  };
  for (const auto& [hash, size, proof] : cases) {
    Job job;
    job.server.On("FEAT", {.reply = kHashes});
    job.server.On("OPTS", {.reply = "200 Yes\r\n"});
    job.server.On("HASH", {.reply = kHashOfF});
    job.server.On("HASH", {.reply = hash}, 2);
    job.server.On("SIZE", {.reply = size});
    job.server.Tree().AddFile("/pub/g", "0123456789");
    job.Fetch("f");
    job.Fetch("g", RemoteEntry::Kind::File, proof == Proof::None ? -1 : 10);
    EXPECT_EQ(job.Run(), TransferEnd::Finished) << job.row->Seen().why;
    EXPECT_EQ(job.row->Progress().proof, proof) << job.server.Dialogue();
  }
}

// A folder that goes while a file comes takes the file with it: that is no success, and nothing is
// tried that would have no place. Once it is back the rest comes.
TEST(BadDays, ATargetThatGoesEndsTheRow) {
  for (const Policy policy : {Policy::CreateNew, Policy::Replace}) {
    for (const bool several : {false, true}) {
      Job job;
      job.policy = policy;
      const fs::path folder = job.folder.Path() / "in";
      fs::create_directory(folder);
      job.description.targetFolder = folder;
      job.server.Tree().AddFile("/pub/g", "0123456789");
      job.Fetch("f");
      if (several) job.Fetch("g");
      job.server.On("RETR", {.arrived = [&] { fs::remove_all(folder); }}, 1);
      EXPECT_EQ(job.Run(), TransferEnd::Failed);
      EXPECT_EQ(job.row->Seen().why, "The folder " + folder.string() + " is not there any more.");
      EXPECT_EQ(job.board->Counted().done + job.board->Counted().failed, 0);
      fs::create_directory(folder);
      job.row = std::make_shared<RecordingTransferUi>();
      EXPECT_EQ(job.Run(), TransferEnd::Finished) << job.row->Seen().why;
      EXPECT_EQ(Contents(folder / (several ? "g" : "f")), "0123456789");
    }
  }
}

// Likewise while a folder is looked through, whatever that holds.
TEST(BadDays, ATargetThatGoesWhileATreeIsListedEndsTheRow) {
  for (const std::vector<std::string>& files :
       {std::vector<std::string>(), std::vector<std::string>{"d/a", "d/s/b"}}) {
    Job job;
    const fs::path folder = job.folder.Path() / "in";
    const fs::path away = job.folder.Path() / "away";
    fs::create_directory(folder);
    job.description.targetFolder = folder;
    job.server.Tree().AddDirectory("/pub/d");
    for (const std::string& file : files) job.server.Tree().AddFile("/pub/" + file, "good");
    job.Fetch("d", RemoteEntry::Kind::Directory, -1);
    job.server.On("LIST", {.arrived = [&] { fs::rename(folder, away); }}, 1);
    EXPECT_EQ(job.Run(), TransferEnd::Failed);
    EXPECT_EQ(job.row->Seen().why, "The folder " + folder.string() + " is not there any more.");
    fs::rename(away, folder);
    job.row = std::make_shared<RecordingTransferUi>();
    ASSERT_EQ(job.Run(), TransferEnd::Finished) << job.row->Seen().why;
    EXPECT_TRUE(fs::is_directory(folder / "d") && job.board->AllEnded());
    for (const std::string& file : files) EXPECT_EQ(Contents(folder / file), "good");
  }
}

// A server that takes one connection: the row that it turns away waits for the other one.
TEST(BadDays, OneConnectionIsEnoughForTwoRows) {
  Job job;
  job.description.connections = 4;
  for (const char* name : {"f", "g", "h"}) {
    job.server.Tree().AddFile(std::string("/pub/") + name, "0123456789");
    job.Fetch(name);
  }
  job.server.On("PASS", {.reply = "530 Too many connections\r\n"});
  job.server.On("PASS", {}, 1);
  Job other;
  other.description.site = job.description.site;
  other.pool = job.pool;
  other.Fetch("f");
  job.server.On("RETR",
                {.arrived =
                     [&] {
                       other.Start();
                       EXPECT_EQ(other.Wait(), TransferEnd::Again) << other.row->Seen().why;
                       other.row = std::make_shared<RecordingTransferUi>();
                       other.Start();
                       EXPECT_TRUE(WaitFor([&] {
                         return std::ranges::count(other.row->Seen().statuses,
                                                   "Waiting for a connection to the server.") > 0;
                       }));
                     }},
                1);
  job.Start();
  EXPECT_EQ(job.Wait(), TransferEnd::Finished) << job.row->Seen().why;
  EXPECT_EQ(other.Wait(), TransferEnd::Finished) << other.row->Seen().why;
}

}  // namespace
}  // namespace corvane
