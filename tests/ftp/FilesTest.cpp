#include "ftp/Session.h"
#include "support/FullPort.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
using Learned = Habits::Learned;

// A file that is there in part, on servers that can begin in its middle, at its end, or not at all.
TEST(Transfer, GoesOnWithWhatIsThere) {
  const ScriptedAction no = {.reply = "502 No\r\n"};
  const std::string cannot = "Refused: The server cannot go on with a file that was sent in part.";
  // To REST, SIZE and STOR; the offset; what is told, what stands there then, and what is sent.
  const std::tuple<ScriptedAction, ScriptedAction, ScriptedAction, int, std::string, std::string,
                   std::string>
      rows[] = {
          {{}, {}, {}, 3, "Done", "bytmore", "REST 3|STOR f|STOR g"},
          {{}, {}, {}, 0, "Done", "more", "STOR f|STOR g"},
          {no, {}, {}, 5, "Done", "bytesmore", "REST 5|SIZE f|APPE f|STOR g"},
          {no, {}, {}, 3, cannot, "bytes", "REST 3|SIZE f|STOR g"},
          {no, no, {}, 5, cannot + "\n\nNo", "bytes", "REST 5|SIZE f|STOR g"},
          {{},
           {},
           {.reply = "550 No\r\n"},
           3,
           "Refused: No",
           "bytes",
           "REST 3|STOR f|REST 0|STOR g"},
      };
  for (const auto& [rest, size, stor, offset, told, there, sent] : rows) {
    Session s(true);
    s.server.Tree().AddFile("/f", "bytes");
    s.server.On("REST", rest, 1);
    s.server.On("SIZE", size);
    s.server.On("STOR", stor, 1);
    s.LogIn();
    std::unique_ptr<RemoteFile> file;
    Outcome outcome = s.engine.OpenForWriting("/f", offset, file);
    if (outcome.IsDone()) EXPECT_EQ(file->Offset(), offset);
    if (outcome.IsDone()) outcome = file->Write(std::string_view("more"));
    if (outcome.IsDone()) outcome = file->Finish();
    EXPECT_EQ(Told(outcome), told);
    EXPECT_EQ(s.server.Tree().File("/f"), there) << s.server.Dialogue();
    ASSERT_TRUE(s.engine.OpenForWriting("/g", 0, file).IsDone()) << s.server.Dialogue();
    EXPECT_TRUE(file->Finish().IsDone());
    std::string commands = s.Sent();
    for (std::size_t at = 0; (at = commands.find("PASV|")) != std::string::npos;)
      commands.erase(at, 5);
    EXPECT_EQ(commands, sent);
  }
}

// A stall is waited for once: neither the data nor the verdict come any more.
TEST(Transfer, WaitsForASilentServerOnce) {
  Session s(true);
  s.server.Tree().AddFile("/f", "bytes");
  s.server.On("RETR", {.dataLimit = 2, .dataEnd = DataEnd::Stall, .completion = ""});
  s.LogIn();
  MFtp engine(s.server.Where(true), s.ui);
  engine.SetWaits(Waits::All(4'000));
  ASSERT_TRUE(engine.Connect().IsDone());
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(Told(s.Get("/f", 0, &engine)), "Lost: The server does not answer");
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 7500ms);
  EXPECT_TRUE(engine.IsLost());
}

// While data stands still the server may say why, or be gone.
TEST(Transfer, HearsTheServerWhileNoDataMoves) {
  struct Row {
    bool download;
    const char* completion;
    ControlEnd control;
    const char* told;
    bool waits = false;  // for data before it is read, and its end comes
  };
  constexpr ControlEnd kOpen = ControlEnd::Open;
  const Row rows[] = {
      {true, "451 Bad disk.\r\n", kOpen, "Refused: Error in parameters\n\nBad disk."},
      {true, "426 Broken.\r\n", kOpen, "Busy: Error in parameters\n\nBroken."},
      {true, "421 Bye.\r\n", ControlEnd::Close,
       "Lost: Service not available, closing control connection!\n\nBye."},
      {true, "", ControlEnd::Close, "Lost: The server closed the connection"},
      {true, "", ControlEnd::Reset, "Lost: The server closed the connection"},
      {false, "452 Disk full.\r\n", kOpen, "Refused: Error in parameters\n\nDisk full."},
      {false, "", ControlEnd::Close, "Lost: The server closed the connection"},
      {true, "451 Bad disk.\r\n", kOpen, "Refused: Error in parameters\n\nBad disk.", true},
      {true, "220 Hello.\r\n", kOpen,
       "Refused: The server is out of step; its reply does not belong to what it was asked: 220 "
       "Hello.",
       true},
      {true, "226 Done.\r\n", kOpen, "Done", true},
  };
  for (const Row& row : rows) {
    for (const bool encrypted : {false, true}) {
      static const TestIdentity identity;
      ScriptedServer server;
      if (encrypted) server.Encrypt(identity);
      server.Tree().AddFile("/f", "bytes");
      server.On(row.download ? "RETR" : "STOR",
                {.dataLimit = 2,
                 .dataEnd = row.waits ? DataEnd::Close : DataEnd::Stall,
                 .completion = row.completion,
                 .endsFirst = true,
                 .control = row.control});
      Session s(true);
      s.ui->answer = UserQuestion::Answer::Once;
      MFtp engine(server.Where(true), s.ui);
      engine.SetWaits(Waits::All(30'000));
      ASSERT_TRUE(engine.Connect().IsDone());
      const auto begin = std::chrono::steady_clock::now();
      Outcome outcome;
      if (row.download) {
        outcome = s.Get("/f", 0, &engine, row.waits);
      } else {
        std::unique_ptr<RemoteFile> file;
        outcome = engine.OpenForWriting("/g", 0, file);
        const std::string much(std::size_t{1} << 20, 'x');
        while (outcome.IsDone()) outcome = file->Write(much);
      }
      EXPECT_EQ(Told(outcome), row.told) << server.Dialogue();
      EXPECT_LT(std::chrono::steady_clock::now() - begin, 10s);
    }
  }
}

// What one session has found out about the ways of data connections spares others the wait.
TEST(DataChannel, KnowsTheWaysOfItsServer) {
  const FullPort full;
  std::uint16_t port = 0;
  full.Address().get(static_cast<char*>(nullptr), &port);
  Session s;
  s.server.Tree().AddFile("/f", "bytes");
  s.server.On("PASV", {.reply = "227 (127,0,0,1," + std::to_string(port / 256) + "," +
                                std::to_string(port % 256) + ")\r\n"});
  s.server.On("RETR", {.reply = "150 Wait\r\n425 No\r\n"}, 1);
  const auto habits = std::make_shared<Habits>();
  std::string sent;
  for (int i = 0; i < 2; ++i) {
    MFtp engine(s.server.Where(true), s.ui, {}, habits);
    ASSERT_TRUE(engine.Connect().IsDone());
    s.skip = s.server.Transcript().size();
    EXPECT_EQ(Told(s.Get("/f", 0, &engine)), "Done") << s.server.Dialogue();
    sent += s.Sent() + "|";
  }
  EXPECT_EQ(sent, "PASV|RETR f|PORT|RETR f|PORT|RETR f|");
  EXPECT_EQ(habits->passive, Learned::No);
  EXPECT_EQ(habits->active, Learned::Yes);
}

TEST(Checksum, IsTakenAsServersTellIt) {
  const std::string sha = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
  const std::string md5 = "900150983CD24FB0D6963F7D28E17F72";
  const std::string none = "Refused: The server makes no checksum of the file.";
  using Kind = DigestKind;
  struct Row {
    std::string features, verb, reply, sent;
    Kind offered;
    std::size_t bytes;  // of the checksum; 0 for a refusal
    Kind left;          // what is offered afterwards
  };
  const std::string hash = "OPTS HASH SHA-256|HASH f";
  const Row rows[] = {
      {"", "", "", "", Kind::None, 0, Kind::None},
      {"HASH SHA-1*;sha-256;x", "HASH", "213 SHA-256 0-3 " + sha + " f", hash, Kind::Sha256, 32,
       Kind::Sha256},
      // It has not changed the kind, tells half of it, or finds no file.
      {"HASH SHA-256;MD5*", "HASH", "213 MD5 0-3 " + md5 + " f", hash, Kind::Sha256, 0, Kind::Md5},
      {"HASH SHA-256", "HASH", "213 SHA-256 0-3 " + sha.substr(1) + " f", hash, Kind::Sha256, 0,
       Kind::None},
      {"HASH SHA-256", "HASH", "550 None", hash, Kind::Sha256, 0, Kind::Sha256},
      {"HASH SHA-256\r\n XMD5", "OPTS", "501 No", "OPTS HASH SHA-256", Kind::Sha256, 0, Kind::Md5},
      {"XMD5\r\n XSHA256\r\n XCRC f", "XSHA256", "250 " + sha, "XSHA256 \"f\"", Kind::Sha256, 32,
       Kind::Sha256},
      {"XMD5", "XMD5", "250 XMD5 of f is " + md5 + ".", "XMD5 \"f\"", Kind::Md5, 16, Kind::Md5},
      {"MD5", "MD5", "251 \"" + md5 + "\" " + md5, "MD5 f", Kind::Md5, 16, Kind::Md5},
      {"XSHA256", "XSHA256", "250 " + sha + " " + std::string(64, '0'), "XSHA256 \"f\"",
       Kind::Sha256, 0, Kind::None},
      {"XCRC", "XCRC", "250 A1B2C", "XCRC \"f\"", Kind::Crc32, 4, Kind::Crc32},
      {"XSHA1\r\n XCRC", "XSHA1", "504 No", "XSHA1 \"f\"", Kind::Sha1, 0, Kind::Crc32},
  };
  for (const Row& row : rows) {
    Session s;
    s.server.On("FEAT", {.reply = "211-Has\r\n " + row.features + "\r\n211 End\r\n"});
    if (row.verb == "HASH") s.server.On("OPTS", {.reply = "200 Yes\r\n"});
    s.server.On(row.verb, {.reply = row.reply + "\r\n"});
    s.LogIn();
    EXPECT_EQ(s.engine.OffersDigest(), row.offered) << row.features;
    std::string digest;
    const Outcome outcome = s.engine.Checksum("/f", 10, row.offered, digest);
    EXPECT_TRUE(row.bytes > 0 ? outcome.IsDone() : Told(outcome).starts_with(none))
        << Told(outcome);
    EXPECT_EQ(digest.size(), row.bytes) << row.features;
    if (row.bytes == 32) EXPECT_TRUE(digest.starts_with("\xBA\x78") && digest.ends_with("\xAD"));
    if (row.bytes == 4) EXPECT_EQ(digest, std::string("\0\x0A\x1B\x2C", 4));
    EXPECT_EQ(s.Sent(), row.sent);
    EXPECT_EQ(s.engine.OffersDigest(), row.left) << row.features;
  }
}

}  // namespace
}  // namespace corvane
