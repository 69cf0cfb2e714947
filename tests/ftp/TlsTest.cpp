#include <future>
#include <thread>

#include "ftp/Session.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using Answer = UserQuestion::Answer;
using Kind = UserQuestion::Kind;

const bool kTrusts = (TrustTestAuthority(), true);

/// Remembers one server.
struct OneServer : ServerTrust {
  KnownServer Find(const std::string&, std::uint16_t) override { return known; }
  void Trust(const std::string&, std::uint16_t, const Certificate& it, bool always) override {
    known.trusted = {it, always ? 1 : 0};
  }
  void NoteEncrypted(const std::string&, std::uint16_t) override { known.wasEncrypted = true; }
  void AllowPlain(const std::string&, std::uint16_t, bool) override {
    known.wasEncrypted = false;
    known.mayBePlain = true;
  }
  KnownServer known;
};

/// A session that encrypts in a certain way.
struct Encrypted : Session {
  explicit Encrypted(Security security = Security::Automatic, bool warns = false)
      : Session(true), site(server.Where(true)) {
    site.security = security;
    site.warnsOfPlain = warns;
    own = std::make_unique<MFtp>(site, ui, trust);
    own->SetWaits(Waits::All(5'000));
  }
  std::string Connect() { return Told(own->Connect()); }
  /// The verbs that were sent, up to the password.
  [[nodiscard]] std::string Verbs() const {
    std::string verbs;
    for (const std::string& line : server.Transcript()) {
      const std::string verb = line.substr(0, line.find_first_of(" \r"));
      if (verb == "SYST") break;
      if (verb != "FEAT") verbs += (verbs.empty() ? "" : " ") + verb;
    }
    return verbs;
  }
  [[nodiscard]] std::vector<Kind> Questions() const {
    std::vector<Kind> kinds;
    for (const auto& question : ui->Seen().questions) kinds.push_back(question.kind);
    return kinds;
  }

  Site site;
  std::shared_ptr<OneServer> trust = std::make_shared<OneServer>();
  std::unique_ptr<MFtp> own;
};

TEST(Encryption, TrustsWhomTheSystemOrTheUserTrusts) {
  const std::string no = "Refused: The certificate of 127.0.0.1 is not trusted.";
  struct Case {
    TestIdentity identity;
    Answer answer;
    std::string told;
    std::uint32_t problems;
  };
  const Case cases[] = {
      {{.signedByAuthority = true}, Answer::No, "Done", 0},
      {{}, Answer::No, no, Certificate::kSelfSigned},
      {{}, Answer::Once, "Done", Certificate::kSelfSigned},
      {{.host = "other.example", .signedByAuthority = true},
       Answer::No,
       no,
       Certificate::kOtherHost},
      {{.signedByAuthority = true, .expired = true}, Answer::No, no, Certificate::kExpired},
      {{.host = "a.example", .expired = true},
       Answer::Always,
       "Done",
       Certificate::kSelfSigned | Certificate::kExpired | Certificate::kOtherHost},
  };
  for (const auto& [identity, answer, told, problems] : cases) {
    Encrypted s;
    s.ui->answer = answer;
    s.server.Encrypt(identity);
    EXPECT_EQ(s.Connect(), told);
    const auto seen = s.ui->Seen();
    ASSERT_EQ(seen.questions.size(), problems == 0 ? 0 : 1) << identity.host;
    if (problems != 0) {
      EXPECT_EQ(seen.questions[0].kind, Kind::UnknownCertificate);
      EXPECT_EQ(seen.questions[0].certificate.problems, problems);
      EXPECT_EQ(seen.questions[0].certificate.names, std::vector{identity.host});
    }
    EXPECT_EQ(s.Verbs(), told == no ? "AUTH" : "AUTH USER PASS PBSZ PROT");
    EXPECT_EQ(s.trust->known.wasEncrypted, told == "Done");
    if (told != "Done") continue;
    // Once trusted it is not asked about again, but another one is.
    EXPECT_EQ(s.Connect(), "Done");
    EXPECT_EQ(s.Questions().size(), problems == 0 ? 0 : 1);
    s.ui->answer = Answer::No;
    s.server.Encrypt({});
    EXPECT_EQ(s.Connect(), no);
    EXPECT_EQ(s.Questions().back(),
              problems == 0 ? Kind::UnknownCertificate : Kind::ChangedCertificate);
  }
}

TEST(Encryption, GoesUnencryptedOnlyWithTheUsersWord) {
  const std::string none = "The server does not offer encryption";
  const std::string never =
      "Refused: The server was encrypted before and does not offer encryption any more. Nothing "
      "was "
      "sent to it.";
  struct Case {
    Security security;
    KnownServer known;
    bool warns;
    Answer answer;
    std::vector<Kind> questions;
    std::string told;
  };
  const Case cases[] = {
      {Security::Automatic, {}, false, Answer::No, {}, "Done"},
      {Security::Plain, {.wasEncrypted = true}, true, Answer::No, {}, "Done"},
      {Security::Automatic,
       {.wasEncrypted = true},
       false,
       Answer::No,
       {Kind::NoMoreEncryption},
       never},
      {Security::Automatic,
       {.wasEncrypted = true},
       true,
       Answer::Once,
       {Kind::NoMoreEncryption},
       "Done"},
      {Security::Automatic,
       {},
       true,
       Answer::No,
       {Kind::PlainPassword},
       "Refused: " + none + ", and the password was not sent."},
      {Security::Automatic, {}, true, Answer::Always, {Kind::PlainPassword}, "Done"},
      {Security::Automatic, {.mayBePlain = true}, true, Answer::No, {}, "Done"},
      {Security::Required,
       {},
       true,
       Answer::Always,
       {},
       "Refused: " + none + ".\n\nNot known here."},
  };
  for (const auto& [security, known, warns, answer, questions, told] : cases) {
    Encrypted s(security, warns);
    s.trust->known = known;
    s.ui->answer = answer;
    EXPECT_EQ(s.Connect(), told);
    EXPECT_EQ(s.Questions(), questions);
    const std::string begin = security == Security::Plain ? "" : "AUTH";
    EXPECT_EQ(s.Verbs(), told == "Done" ? begin + (begin.empty() ? "" : " ") + "USER PASS" : begin);
    if (told == "Done")
      EXPECT_EQ(s.Connect() + std::to_string(s.Questions().size()),
                "Done" + std::to_string(questions.size()));
  }
}

// Nothing is said in plain text once the server has agreed to encrypt, or somebody else has.
TEST(Encryption, FailsWhereItDoesNotComeAbout) {
  const std::string failed = "Lost: Connection to:  127.0.0.1 FAILED!\n\n";
  const std::string between = failed + "Something came before the encryption had begun";
  const std::pair<ScriptedAction, std::string> cases[] = {
      {{.reply = "234 Go\r\n230 You are in.\r\n"}, between},
      {{.reply = "234-Go\r\n234 on\r\n\x16\x03\x01"}, between},
      {{.reply = "234 Go\r\n", .control = ControlEnd::Close}, failed},
      {{.reply = "234 Go\r\n", .control = ControlEnd::Reset}, failed},
      {{.reply = "431 Not now\r\n"}, "Refused: The server does not offer encryption.\n\nNot now"},
      {{.handshakeLimit = 5}, failed + "The encryption did not come about.\n\n"},
      {{.handshakeLimit = 200}, failed + "The encryption did not come about.\n\n"},
  };
  for (const auto& [action, told] : cases) {
    Encrypted s;
    s.server.Encrypt({.signedByAuthority = true});
    s.server.On("AUTH", action);
    const std::string really = s.Connect();
    EXPECT_TRUE(really.starts_with(told)) << really;
    EXPECT_EQ(s.Verbs(), "AUTH");
  }
  EXPECT_EQ(Encrypted(Security::Implicit).Connect(),
            failed + "The encryption did not come about.\n\nThe server does not speak TLS here.");
  Encrypted data;
  data.server.Encrypt({.signedByAuthority = true});
  data.server.On("PROT", {.reply = "534 No\r\n"});
  EXPECT_EQ(data.Connect(), "Refused: The server does not encrypt listings and transfers.\n\nNo");
}

TEST(Encryption, IsCancelledWhileAServerOrAUserTakesTime) {
  for (const bool user : {false, true}) {
    Encrypted s;
    s.ui->leavesOpen = true;
    s.server.Encrypt({});
    if (!user) s.server.On("AUTH", {.dataEnd = DataEnd::Stall, .handshakeLimit = 0});
    auto connecting = std::async(std::launch::async, [&] { return s.Connect(); });
    ASSERT_TRUE(
        WaitFor([&] { return user ? !s.Questions().empty() : s.Verbs().starts_with("AUTH"); }));
    s.own->Close();
    EXPECT_EQ(connecting.wait_for(std::chrono::seconds(2)), std::future_status::ready);
    EXPECT_EQ(connecting.get(), "Cancelled: Cancelled.");
  }
}

TEST(Encryption, ShowsACertificateOfTheUsers) {
  const TemporaryDirectory folder;
  const std::string path = folder.Path() / "anna";
  const std::string locked = " cannot be opened without its passphrase.";
  const std::string unusable = "Refused: The certificate of yours cannot be used.\n\nThe ";
  struct Case {
    KeyFile form;
    std::string given;
    std::size_t questions;
    std::string told;
  };
  const Case cases[] = {
      {KeyFile::Pem, "", 0, "Done"},
      {KeyFile::LockedPem, "secret", 1, "Done"},
      {KeyFile::LockedPem, "wrong", 3, unusable + "key in " + path + locked},
      {KeyFile::Pkcs12, "secret", 1, "Done"},
      {KeyFile::Pkcs12, "wrong", 3, unusable + "key in " + path + locked},
      {KeyFile::NoKey, "", 0, unusable + "file " + path + " holds no key."},
  };
  for (const auto& [form, given, questions, told] : cases) {
    WriteClientCertificate(path, form, "secret");
    Encrypted s;
    s.server.Encrypt({.signedByAuthority = true, .wantsCertificate = true});
    s.site.clientCertificate = path;
    s.ui->answer = Answer::Once;
    s.ui->passphrase = given;
    s.own = std::make_unique<MFtp>(s.site, s.ui);
    EXPECT_EQ(s.Connect(), told);
    EXPECT_EQ(s.Questions(), std::vector(questions, Kind::Passphrase));
  }
  Encrypted none;
  none.server.Encrypt({.signedByAuthority = true, .wantsCertificate = true});
  const std::string told = none.Connect();
  EXPECT_TRUE(told.ends_with("The server lets in only who shows a certificate that it knows."))
      << told;
}

// A server that goes without close_notify is believed where the size, or a second listing, agrees.
TEST(Encryption, KnowsDataThatWasCut) {
  const std::string cut = "Busy: The data ended without a word that it was all.";
  for (const bool all : {true, false}) {
    Encrypted s;
    s.server.Encrypt({.signedByAuthority = true});
    s.server.Tree().AddFile("/f", std::string(100'000, 'x'));
    for (const char* verb : {"RETR", "LIST"})
      s.server.On(verb, {.dataLimit = all ? std::string::npos : 7, .saysEnd = false});
    ASSERT_EQ(s.Connect(), "Done");
    std::unique_ptr<RemoteFile> file;
    ASSERT_TRUE(s.own->OpenForReading("/f", 0, file).IsDone());
    std::vector<char> block(1 << 20);
    std::size_t sum = 0;
    for (std::size_t got = 1; got > 0; sum += got) EXPECT_TRUE(file->Read(block, got).IsDone());
    EXPECT_EQ(sum, all ? 100'000 : 7);
    s.server.On("RETR", {.saysEnd = false});
    if (all) EXPECT_EQ(Told(file->Finish()), "Done");
    if (!all) EXPECT_EQ(Told(file->Finish()), cut);
  }
  Encrypted list;
  list.server.Encrypt({.signedByAuthority = true});
  list.server.Tree().AddFile("/f", "x");
  list.server.On("LIST", {.dataLimit = 7, .saysEnd = false}, 1);
  ASSERT_EQ(list.Connect(), "Done");
  EXPECT_EQ(Told(list.own->List("/", list)), "Done") << list.server.Dialogue();
  list.server.On("LIST", {.saysEnd = false});
  EXPECT_EQ(Told(list.own->List("/", list)), "Done") << list.server.Dialogue();
  // Cut twice at the same place: in a line, and at its end, where a reply tells of more.
  const std::string line = "-rw-r--r-- 1 u g 1 Jan 1 10:00 f\r\n";
  for (const std::size_t limit : {line.size() - 4, line.size()}) {
    list.server.On("LIST", {.data = line + line, .dataLimit = limit, .saysEnd = false});
    list.server.On("STAT", {.reply = "213-Status\r\n" + line +
                                     "-rw-r--r-- 1 u g 1 Jan 1 10:00 g\r\n213 End\r\n"});
    list.names.clear();
    const std::string told = Told(list.own->List("/", list));
    EXPECT_TRUE(told.starts_with("Busy: The listing is not complete: ")) << told;
    EXPECT_EQ(list.names, limit == line.size() ? "f|" : "");
  }
}

}  // namespace
}  // namespace corvane
