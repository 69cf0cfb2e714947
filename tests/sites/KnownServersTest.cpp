#include "sites/KnownServers.h"

#include <sys/stat.h>
#include <unistd.h>

#include <memory>

#include "support/Config.h"
#include "support/Files.h"

namespace corvane {
namespace {

class Known : public ConfigTest {
 protected:
  static Certificate Named(const std::string& name) {
    return {.name = name,
            .names = {name, "*." + name},
            .issuer = "nobody",
            .notBefore = -1,
            .notAfter = 4'000'000'000,
            .sha256 = std::string("\0\xFF", 2) + name,
            .problems = Certificate::kSelfSigned | Certificate::kOtherHost};
  }
  /// "name encrypted plain" of what is known.
  static std::string What(ServerTrust& trust, const std::string& host, std::uint16_t port = 21) {
    const KnownServer known = trust.Find(host, port);
    if (known.trusted) {
      const Certificate& certificate = known.trusted->certificate;
      EXPECT_EQ(certificate, Named(certificate.name));
    }
    return (known.trusted ? known.trusted->certificate.name : "-") +
           (known.wasEncrypted ? " encrypted" : "") + (known.mayBePlain ? " plain" : "");
  }
  static std::string Listed(KnownServers& known) {
    std::string text;
    for (const auto& entry : known.List()) {
      text += entry.host + ":" + std::to_string(entry.port) + "=" + entry.trusted.certificate.name +
              (entry.always ? " " : "? ");
    }
    return text;
  }
  static std::string Aside() { return KnownServers::UsualPath() + ".damaged"; }
};

TEST_F(Known, HoldsAlwaysOrUntilTheProgramEndsForAllPrograms) {
  auto one = std::make_unique<KnownServers>();
  KnownServers other;
  EXPECT_EQ(What(other, "h"), "-");
  EXPECT_NE(::access(KnownServers::UsualPath().c_str(), F_OK), 0) << "nothing to keep yet";
  one->Trust("Host", 21, Named("a"), true);
  one->Trust("host", 990, Named("b"), false);
  EXPECT_EQ(What(other, "HOST") + What(other, "host", 990), "a-");
  EXPECT_EQ(Listed(*one) + "| " + Listed(other), "host:21=a host:990=b? | host:21=a ");
  other.Trust("host", 21, Named("c"), true);
  one->NoteEncrypted("host", 21);
  EXPECT_EQ(What(*one, "host") + What(other, "host"), "c encryptedc encrypted");
  one->AllowPlain("host", 21, false);
  EXPECT_EQ(What(*one, "host") + What(other, "host"), "c plainc encrypted");
  one->NoteEncrypted("host", 21);
  EXPECT_EQ(What(*one, "host"), "c encrypted") << "the permission ends with encryption";
  other.AllowPlain("host", 21, true);
  other.Remove("Host", 21);
  one->Remove("host", 990);
  one = std::make_unique<KnownServers>();
  EXPECT_EQ(What(*one, "host") + Listed(*one), "- plain");
  one->NoteEncrypted("host", 21);
  one->Trust("host", 21, Named("d"), true);
  one->Remove("host", 21);
  EXPECT_EQ(What(other, "host"), "- encrypted") << "that stays known";
  struct stat status {};
  ASSERT_EQ(::stat(KnownServers::UsualPath().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  EXPECT_TRUE(one->Trouble().IsEmpty() && other.Trouble().IsEmpty());
}

TEST_F(Known, PutsAsideWhatItCannotReadAndGoesOn) {
  KnownServers().Trust("h", 21, Named("a"), true);
  const std::string whole = Contents(KnownServers::UsualPath());
  std::string newer = whole;
  newer[63] = 2;  // the last byte of the user's version in an SQLite header
  std::string broken = whole;
  broken.replace(4096, 100, 100, '\xAA');  // the table's first page
  std::string number;
  for (const std::string& bytes : {std::string("no database at all, but long enough"), newer,
                                   broken, whole.substr(0, whole.size() - 100)}) {
    Write(KnownServers::UsualPath(), bytes);
    KnownServers known;
    EXPECT_FALSE(known.Trouble().IsEmpty()) << "at the start";
    EXPECT_EQ(What(known, "h"), "-");
    EXPECT_TRUE(Contents(Aside() + number) == bytes) << "beside those put aside before";
    number = number.empty() ? ".2" : "." + std::to_string(std::stoi(number.substr(1)) + 1);
    known.Trust("h", 21, Named("b"), true);
    EXPECT_EQ(What(known, "h") + Listed(known), "bh:21=b ");
    EXPECT_EQ(What(*std::make_unique<KnownServers>(), "h"), "b");
  }
}

TEST_F(Known, RemembersInMemoryWhatCannotBeWritten) {
  const std::string file = home_.Path() / "file";
  Write(file, "");
  KnownServers known(file + "/certificates.sqlite");
  known.Trust("h", 21, Named("a"), true);
  known.NoteEncrypted("h", 21);
  EXPECT_EQ(What(known, "h") + Listed(known), "a encryptedh:21=a? ");
  EXPECT_FALSE(known.Trouble().IsEmpty());
}

}  // namespace
}  // namespace corvane
