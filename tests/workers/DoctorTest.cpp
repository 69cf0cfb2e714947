#include "workers/Doctor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <functional>
#include <list>
#include <thread>

#include "ftp/FtpExamination.h"
#include "ftp/ListingFacts.h"
#include "kit/Mutex.h"
#include "support/FullPort.h"
#include "support/ScriptedServer.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using Fix = Advice::Fix;
using Kind = DiagnosisStep::Kind;
using Sign = DiagnosisStep::Sign;
using std::chrono::milliseconds;

const bool kTrusts = (TrustTestAuthority(), true);
constexpr milliseconds kLimit(3'000);

/// What a doctor has shown.
class Shown final : public DiagnosisUi {
 public:
  bool ShowStep(const DiagnosisStep& step) override {
    const MutexLock hold(lock_);
    if (step.sign != Sign::Running) steps_.push_back(step);
    return true;
  }
  bool ShowAdvice(const Advice& advice) override {
    const MutexLock hold(lock_);
    advice_ = advice;
    return true;
  }
  [[nodiscard]] std::vector<DiagnosisStep> Steps() const {
    const MutexLock hold(lock_);
    return steps_;
  }
  [[nodiscard]] std::optional<Advice> Advised() const {
    const MutexLock hold(lock_);
    return advice_;
  }

 private:
  mutable Mutex lock_;
  std::vector<DiagnosisStep> steps_ GUARDED_BY(lock_);
  std::optional<Advice> advice_ GUARDED_BY(lock_);
};

/// Knows what it is told to, and must not be told anything.
struct Known final : ServerTrust {
  explicit Known(KnownServer server) : server(std::move(server)) {}
  KnownServer Find(const std::string&, std::uint16_t) override { return server; }
  void Trust(const std::string&, std::uint16_t, const Certificate&, bool) override { ++told; }
  void NoteEncrypted(const std::string&, std::uint16_t) override { ++told; }
  void AllowPlain(const std::string&, std::uint16_t, bool) override { ++told; }
  KnownServer server;
  int told = 0;
};

/// A server, the site that is to lead there, and the means of looking at it.
struct Patient {
  ScriptedServer server;
  ScriptedServer other;
  FullPort full;
  Site site = server.Where(true);
  FtpExamination::Means means{.limit = kLimit, .usualPort = 1, .encryptedPort = 1};
  KnownServer known;
  std::shared_ptr<Shown> shown = std::make_shared<Shown>();
  std::shared_ptr<Known> trust;
  std::shared_ptr<Doctor> doctor;

  Patient() {
    server.Tree().AddFile("/small.txt", "something");
    site.password = "hush-hush";
  }
  void Begin() {
    trust = std::make_shared<Known>(known);
    doctor = std::make_shared<Doctor>(
        shown, std::make_unique<FtpExamination>(site, trust, means),
        Doctor::Limits{.step = kLimit + milliseconds(500), .whole = milliseconds(30'000)});
    ASSERT_TRUE(doctor->Run());
  }
  [[nodiscard]] bool Ends() const {
    return WaitFor([this] { return shown->Advised().has_value(); }, milliseconds(30'000));
  }
  [[nodiscard]] std::string Report() const {
    std::string report;
    for (const DiagnosisStep& step : shown->Steps())
      report += std::to_string(static_cast<int>(step.sign)) + " " + step.name.English() + ": " +
                step.seen.English() + "\n";
    if (const auto advice = shown->Advised()) report += advice->verdict.English() + "\n";
    return report + server.Dialogue();
  }
};

struct Case {
  const char* name;
  std::function<void(Patient&)> ill;
  Kind kind;  // of the step that shows it
  Sign sign;
  Finding finding;
  Fix fix;
  bool password = false;  // was sent
};

ScriptedAction Says(const char* reply, ControlEnd end = ControlEnd::Open) {
  return {.reply = reply, .control = end};
}

std::uint16_t ClosedPort() {
  NLEndpoint endpoint(NLEndpoint::stream);
  endpoint.bind(NLAddress("127.0.0.1", 0));
  return endpoint.localAddress().port();
}

std::vector<Case> Cases() {
  const auto bad = Sign::Bad;
  const auto caution = Sign::Caution;
  return {
      {"all is well", [](Patient&) {}, Kind::Encryption, caution, Finding::NotEncrypted,
       Fix::Connect, true},
      {"name unknown",
       [](Patient& p) {
         p.means.resolve = [](auto&&...) -> std::vector<NLAddress> {
           throw NLException("resolve", "Name or service not known");
         };
       },
       Kind::Address, bad, Finding::UnknownName, Fix::EditSite},
      {"port closed", [](Patient& p) { p.site.port = ClosedPort(); }, Kind::Port, bad,
       Finding::PortClosed, Fix::EditSite},
      {"wrong port",
       [](Patient& p) {
         p.site.port = ClosedPort();
         p.means.usualPort = p.server.Port();
       },
       Kind::Port, bad, Finding::OtherPort, Fix::ChangePort},
      {"port filtered", [](Patient& p) { p.site.port = p.full.Address().port(); }, Kind::Port, bad,
       Finding::PortSilent, Fix::TellOperator},
      {"IPv6 half broken",
       [](Patient& p) {
         p.means.resolve = [port = p.site.port](auto&&...) {
           return std::vector{NLAddress("::1", port), NLAddress("127.0.0.1", port)};
         };
       },
       Kind::Port, caution, Finding::DeadAddress, Fix::Connect, true},
      {"a proxy refuses",
       [](Patient& p) {
         p.other.On("greeting", Says(""));
         p.other.On("CONNECT", Says("HTTP/1.1 403 Forbidden\r\n\r\n", ControlEnd::Close));
         p.site.proxy = Proxy{"127.0.0.1", p.other.Port(), Proxy::Kind::Http};
       },
       Kind::Port, bad, Finding::ProxyFails, Fix::TellOperator},
      {"SSH behind it",
       [](Patient& p) { p.server.On("greeting", Says("SSH-2.0-OpenSSH_9.2p1\r\n")); },
       Kind::Greeting, bad, Finding::Ssh, Fix::EditSite},
      {"HTTP behind it",
       [](Patient& p) {
         p.server.On("greeting", Says(""));
         p.server.On("OPTIONS", Says("HTTP/1.1 400 Bad Request\r\n", ControlEnd::Close));
       },
       Kind::Greeting, bad, Finding::Web, Fix::EditSite},
      {"TLS only", [](Patient& p) { p.server.Encrypt({.signedByAuthority = true}, true); },
       Kind::Greeting, bad, Finding::EncryptsAtOnce, Fix::EncryptAtOnce},
      {"too many connections",
       [](Patient& p) {
         p.server.On("greeting", Says("421 Too many connections (5).\r\n", ControlEnd::Close));
       },
       Kind::Greeting, bad, Finding::TooMany, Fix::Connect},
      {"plain text first", [](Patient& p) { p.site.security = Security::Implicit; },
       Kind::Encryption, bad, Finding::EncryptsLater, Fix::EncryptByCommand},
      {"plain only, and TLS required", [](Patient& p) { p.site.security = Security::Required; },
       Kind::Encryption, bad, Finding::NoEncryption, Fix::EditSite},
      {"plain only, encrypted before",
       [](Patient& p) {
         p.site.security = Security::Automatic;
         p.known.wasEncrypted = true;
       },
       Kind::Encryption, bad, Finding::LostEncryption, Fix::TellOperator},
      {"plain only, and the user is to be asked",
       [](Patient& p) {
         p.site.security = Security::Automatic;
         p.site.warnsOfPlain = true;
       },
       Kind::Encryption, bad, Finding::PlainPassword, Fix::Connect},
      {"AUTH hangs",
       [](Patient& p) {
         p.site.security = Security::Automatic;
         p.server.On("AUTH", Says(""));
       },
       Kind::Encryption, bad, Finding::EncryptionHangs, Fix::EditSite},
      {"certificate expired",
       [](Patient& p) {
         p.site.security = Security::Required;
         p.server.Encrypt({.signedByAuthority = true, .expired = true});
       },
       Kind::Encryption, bad, Finding::CertificateExpired, Fix::Connect},
      {"certificate of another host",
       [](Patient& p) {
         p.site.security = Security::Required;
         p.server.Encrypt({.host = "ftp.example.org", .signedByAuthority = true});
       },
       Kind::Encryption, bad, Finding::CertificateOfOther, Fix::EditSite},
      {"certificate unknown",
       [](Patient& p) {
         p.site.security = Security::Automatic;
         p.server.Encrypt({});
       },
       Kind::Encryption, bad, Finding::CertificateUnknown, Fix::Connect},
      {"login only encrypted",
       [](Patient& p) { p.server.On("USER", Says("550 SSL/TLS required here.\r\n")); }, Kind::Login,
       bad, Finding::NeedsEncryption, Fix::EncryptByCommand},
      {"wrong password, which the server repeats",
       [](Patient& p) { p.server.On("PASS", Says("530 No such user with hush-hush.\r\n")); },
       Kind::Login, bad, Finding::WrongLogin, Fix::OtherPassword, true},
      {"login by a name only",
       [](Patient& p) {
         p.site.user = "anonymous";
         p.server.On("USER", Says("530 Not for everybody.\r\n"));
       },
       Kind::Login, bad, Finding::NotAnonymous, Fix::EditSite},
      {"account locked",
       [](Patient& p) { p.server.On("PASS", Says("530 Account is locked.\r\n")); }, Kind::Login,
       bad, Finding::Locked, Fix::TellOperator, true},
      {"too many logins",
       [](Patient& p) { p.server.On("USER", Says("530 Maximum number of clients reached.\r\n")); },
       Kind::Login, bad, Finding::TooMany, Fix::Connect},
      {"an account is asked for",
       [](Patient& p) { p.server.On("PASS", Says("332 Which account?\r\n")); }, Kind::Login, bad,
       Finding::Unavailable, Fix::TellOperator, true},
      {"data ends without a word",
       [](Patient& p) {
         p.site.security = Security::Required;
         p.server.Encrypt({.signedByAuthority = true});
         p.server.On("LIST", {.saysEnd = false});
         p.server.On("RETR", {.saysEnd = false});
       },
       Kind::Address, Sign::Good, Finding::Nothing, Fix::Connect, true},
      {"no rights in the directory",
       [](Patient& p) {
         p.site.path = "/private";
         p.server.On("CWD", Says("550 Permission denied.\r\n"));
       },
       Kind::Directory, bad, Finding::NoDirectory, Fix::StartElsewhere, true},
      {"passive ports filtered",
       [](Patient& p) {
         const std::uint16_t port = p.full.Address().port();
         p.server.On("PASV", {.reply = "227 Passive (127,0,0,1," + std::to_string(port / 256) +
                                       "," + std::to_string(port % 256) + ")\r\n"});
         p.server.On("LIST", Says("425 Nobody came.\r\n"), 1);
       },
       Kind::Passive, bad, Finding::NoPassive, Fix::TurnOffPassive, true},
      {"private address",
       [](Patient& p) {
         p.server.On("PASV", Says("227 Entering Passive Mode (10,0,0,5,{port}).\r\n"));
       },
       Kind::Passive, caution, Finding::PrivateAddress, Fix::Connect, true},
      {"active filtered",
       [](Patient& p) {
         p.site.passive = false;
         p.server.On("LIST", Says("150 Wait for it.\r\n"), 1);
       },
       Kind::Active, bad, Finding::NoActive, Fix::TurnOnPassive, true},
      {"neither mode", [](Patient& p) { p.server.On("LIST", Says("425 No data connection.\r\n")); },
       Kind::Active, bad, Finding::NoActive, Fix::TellOperator, true},
      {"options refused", [](Patient& p) { p.server.On("LIST", Says("550 No such file.\r\n"), 1); },
       Kind::Listing, caution, Finding::NoOptions, Fix::Connect, true},
      {"DOS listing",
       [](Patient& p) {
         p.server.On("SYST", Says("215 Windows_NT\r\n"));
         p.server.On("LIST", {.data = "07-17-00  02:35PM       9 small.txt\r\n"});
       },
       Kind::Listing, caution, Finding::DosListing, Fix::Connect, true},
      {"no resume", [](Patient& p) { p.server.On("REST", Says("502 Not known here.\r\n")); },
       Kind::Resume, caution, Finding::NoResume, Fix::Connect, true},
      {"clock off by hours",
       [](Patient& p) {
         const auto later = WriteTimeVal(std::time(nullptr) + 3 * 3600);
         p.server.On("MDTM", {.reply = "213 " + later.value_or("") + "\r\n"});
       },
       Kind::Clock, caution, Finding::ClockAhead, Fix::Connect, true},
  };
}

// Each server is ill in its own way; the doctor sees that, advises what helps, gives nothing away
// that a connection would not, and leaves everything as it was.
TEST(Doctor, FindsWhatIsWrong) {
  const std::vector<Case> cases = Cases();
  std::list<Patient> patients;
  for (const Case& one : cases) {
    one.ill(patients.emplace_back());
    patients.back().Begin();
  }
  auto patient = patients.begin();
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    Patient& p = *patient++;
    ASSERT_TRUE(p.Ends());
    const std::vector<DiagnosisStep> steps = p.shown->Steps();
    const auto step = std::ranges::find(steps, one.finding, &DiagnosisStep::finding);
    ASSERT_NE(step, steps.end()) << p.Report();
    EXPECT_EQ(step->kind, one.kind);
    EXPECT_EQ(step->sign, one.sign);
    const Advice advice = *p.shown->Advised();
    EXPECT_EQ(advice.fix, one.fix) << p.Report();
    EXPECT_EQ(steps.size(), 13U);
    EXPECT_EQ(p.trust->told, 0);
    const std::string dialogue = p.server.Dialogue();
    EXPECT_EQ(dialogue.find("> PASS") != std::string::npos, one.password) << p.Report();
    for (const char* verb : {"STOR", "APPE", "DELE", "RNFR", "MKD", "RMD", "SITE", "MFMT"})
      EXPECT_EQ(dialogue.find("> " + std::string(verb)), std::string::npos) << verb;
    for (const DiagnosisStep& each : steps)
      EXPECT_EQ(each.seen.English().find("hush"), std::string::npos) << each.seen.English();
  }
}

// A server that is encrypted at first, and no more when it is connected to anew.
TEST(Doctor, SendsNoPasswordInPlainTextLater) {
  Patient p;
  p.site.security = Security::Automatic;
  p.server.Encrypt({.signedByAuthority = true});
  p.server.On("AUTH", {}, 1);
  p.server.On("AUTH", Says("500 What?\r\n"));
  p.server.On("LIST", Says("", ControlEnd::Reset), 1);
  p.Begin();
  ASSERT_TRUE(p.Ends());
  const std::vector<std::string> sent = p.server.Transcript();
  EXPECT_GE(std::ranges::count(sent, "AUTH TLS\r\n"), 2) << p.Report();
  EXPECT_EQ(std::ranges::count(sent, "PASS hush-hush\r\n"), 1) << p.Report();
}

// With what is advised the connection is well.
TEST(Doctor, AdvisesWhatHelps) {
  std::list<Patient> patients;
  for (const Case& one : Cases()) {
    const std::array kMended = {Fix::ChangePort, Fix::EncryptAtOnce, Fix::StartElsewhere,
                                Fix::TurnOffPassive, Fix::TurnOnPassive};
    if (std::ranges::find(kMended, one.fix) == kMended.end()) continue;
    one.ill(patients.emplace_back());
    patients.back().Begin();
  }
  for (Patient& ill : patients) {
    ASSERT_TRUE(ill.Ends());
    ill.site = ill.shown->Advised()->site;
    ill.shown = std::make_shared<Shown>();
    ill.Begin();
  }
  EXPECT_EQ(patients.size(), 5U);
  for (const Patient& mended : patients) {
    ASSERT_TRUE(mended.Ends());
    EXPECT_EQ(mended.shown->Advised()->fix, Fix::Connect) << mended.Report();
  }
}

// A server that keeps it waiting does not keep it from ending.
TEST(Doctor, EndsAtOnceWhenCancelled) {
  for (const char* verb : {"greeting", "AUTH", "USER", "PWD", "PASV", "LIST", "MDTM"}) {
    SCOPED_TRACE(verb);
    Patient p;
    p.site.security = Security::Automatic;
    std::atomic<bool> arrived{false};
    p.server.On(verb, {.arrived = [&] { arrived = true; }, .reply = ""});
    p.Begin();
    ASSERT_TRUE(WaitFor([&] { return arrived.load(); }));
    const std::weak_ptr<Doctor> running = p.doctor;
    const auto begin = std::chrono::steady_clock::now();
    p.doctor->Cancel();
    p.doctor.reset();
    EXPECT_TRUE(WaitFor([&] { return running.expired(); }));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(1'000));
    EXPECT_FALSE(p.shown->Advised().has_value());
  }
}

}  // namespace
}  // namespace corvane
