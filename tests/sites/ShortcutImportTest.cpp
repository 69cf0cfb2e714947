#include "sites/ShortcutImport.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "sites/ShortcutLines.h"
#include "support/Config.h"
#include "support/Files.h"

namespace corvane {
namespace {

using std::string_literals::operator""s;

/// An entry in one line: "[folder/]label=user:password@host:port/path" and its signs: P passive,
/// A active, a number for its security, c and e for connections and encoding, "asks", "kept"; or
/// "!" and why it is refused. Notes stand behind.
std::string Described(const ImportedShortcut& entry) {
  const Shortcut& shortcut = entry.shortcut;
  const Site& site = shortcut.site;
  std::string text = shortcut.folder.empty() ? "" : shortcut.folder + "/";
  text += shortcut.label;
  if (!entry.refusal.IsEmpty()) {
    text += " !" + entry.refusal.English();
  } else {
    text += "=" + site.user + ":" + site.password + "@" + site.host + ":" +
            std::to_string(site.port) + site.path + (site.passive ? " P" : " A") +
            std::to_string(static_cast<int>(site.security));
    if (site.connections > 0) text += " c" + std::to_string(site.connections);
    if (!site.encoding.empty()) text += " e" + site.encoding;
    if (site.asksPassword) text += " asks";
    if (site.keptPassword) text += " kept";
  }
  for (const Text& note : entry.notes) text += " (" + note.English() + ")";
  return text + "\n";
}

std::string Read(const std::string& bytes) {
  ShortcutImport import = ShortcutImport::Read(bytes);
  EXPECT_TRUE(import.failure.IsEmpty() || import.entries.empty());
  if (!import.failure.IsEmpty()) return import.failure.English();
  import.FitToStore(false);
  std::string text;
  for (const ImportedShortcut& entry : import.entries) text += Described(entry);
  return text;
}

std::string Sites(const std::string& inside) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<FileZilla3 version=\"3.66\">\n<Servers>" +
         inside + "</Servers>\n</FileZilla3>\n";
}
std::string Server(const std::string& fields) {
  return Sites("<Server><Host>h</Host><Name>n</Name>" + fields + "</Server>");
}

constexpr const char* kUnknown = "This is no list of connections that Corvane can read.";

TEST(ShortcutImport, ReadsTheSiteManager) {
  const std::string login = "<User>u</User><Logontype>1</Logontype>";
  const std::pair<std::string, const char*> cases[] = {
      {Sites(""), ""},
      {Sites("<Folder expanded=\"1\">W &amp; a/b\n<Folder>Web<Server><Host>h</Host>"
             "<Name>in</Name></Server></Folder></Folder><Server><Host>h</Host>\n old </Server>"
             "<Unknown><Server><Host>x</Host></Server></Unknown>"),
       "W & a-b/Web/in=:@h:21 P0\nold=:@h:21 P0\n"},
      {Server(login + "<Pass encoding=\"base64\">c2VjcmV0</Pass><Port>2121</Port>"
                      "<Protocol>4</Protocol><PasvMode>MODE_ACTIVE</PasvMode>"
                      "<MaximumMultipleConnections>99</MaximumMultipleConnections>"
                      "<EncodingType>Custom</EncodingType><CustomEncoding>CP1251</CustomEncoding>"
                      "<RemoteDir>1 0 4 home 3 \xC3\xA4 b</RemoteDir>"),
       "n=u:secret@h:2121/home/\xC3\xA4 b A1 c8 eCP1251\n"},
      {Server("<Protocol>3</Protocol><RemoteDir>1 0</RemoteDir>"), "n=:@h:990/ P2\n"},
      {Server("<Protocol>6</Protocol><Logontype>0</Logontype><User>anonymous</User>"),
       "n=:@h:21 P3\n"},
      {Server(login + "<Pass>plain text</Pass>"), "n=u:plain text@h:21 P0\n"},
      {Server("<User>u</User><Logontype>2</Logontype><Pass>x</Pass>"), "n=u:@h:21 P0 asks\n"},
      {Server(login + "<Pass encoding=\"crypt\" pubkey=\"k\">c2VjcmV0</Pass>"),
       "n=u:@h:21 P0 kept (Its password is encrypted with a master password, and is asked for.)\n"},
      {Server(login + "<Pass encoding=\"base64\">c2V%</Pass>"),
       "n=u:@h:21 P0 kept (Its password cannot be read, and is asked for.)\n"},
      {Server(login + "<Pass encoding=\"base64\">cDp3</Pass>"),
       "n=u:@h:21 P0 asks (Its password holds a character that a shortcut cannot hold: it is "
       "asked for.)\n"},
      {Server(login + "<Pass encoding=\"base64\">YQpi</Pass>"),
       "n=u:@h:21 P0 asks (Its password holds a character that a shortcut cannot hold: it is "
       "asked for.)\n"},
      {Server("<Protocol>1</Protocol>"),
       "n !It is reached over SSH, which Corvane does not speak.\n"},
      {Server("<Protocol>7</Protocol>"),
       "n !It is reached over a protocol that Corvane does not speak.\n"},
      {Server("<Host> </Host><Port>70000</Port>"),
       "n=:@h:0 P0 (Its port is no number from 1 to 65535.)\n"},
      {Sites("<Server/>"), " !It names no server.\n"},
      {Sites("<Server><Host>a b</Host></Server>"),
       "a b !The name of its server has a character that no name can have.\n"},
      {Server("<RemoteDir>1 0 9 home</RemoteDir><Bookmark><Name>b</Name></Bookmark>"),
       "n=:@h:21 P0 (Its directory cannot be read, and is left out.) (Its own bookmarks are left "
       "out.)\n"},
      {Server("<RemoteDir>1 0 3 a:b</RemoteDir>"),
       "n=:@h:21 P0 (Its directory holds a character that a shortcut cannot hold, and is left "
       "out.)\n"},
      {Sites("<Server><Host>h</Host><Name>a*b</Name></Server>"),
       "a-b=:@h:21 P0 (The “*” in its label becomes a “-”.)\n"},
      // What is not such a list, or no longer one.
      {Sites("").substr(0, 90), "The file is damaged: Line 4 cannot be read."},
      {"<FileZilla3><Servers><Server>\xFF</Server></Servers></FileZilla3>",
       "The file is damaged: Line 1 cannot be read."},
      {"<FileZilla><Sites/></FileZilla>", "The file is of a version that Corvane cannot read."},
      {"<FileZilla3><Settings/></FileZilla3>", "The file holds no sites."},
      {"<html/>", kUnknown},
      {"<!DOCTYPE a [<!ENTITY b \"cc\"><!ENTITY d \"&b;&b;\">]><FileZilla3>&d;</FileZilla3>",
       kUnknown},
  };
  for (const auto& [bytes, expected] : cases) EXPECT_EQ(Read(bytes), expected) << bytes;
}

TEST(ShortcutImport, ReadsWhatProgramsOfTheCommandLineKnow) {
  const std::pair<std::string, const char*> cases[] = {
      {"# mine\nmachine h login u password \"a \\\"b\" account x\nmachine i\n",
       "h=u:a \"b@h:21 P0 (Its account is left out.)\ni=:@i:21 P0\n"},
      {"macdef init\nmachine x\n\nmachine h login u\ndefault login anonymous password me@home",
       "h=u:@h:21 P0 kept\ndefault !It stands for all servers, and names none of them.\n"},
      {"machine h login", "The file is damaged: Its end is missing."},
      {"machine h\nlogin \"u", "The file is damaged: Line 2 cannot be read."},
      {"machine h login u sword x", "The file is damaged: Line 1 cannot be read."},
      {"machine h login a:b", "h !Its username holds a character that a shortcut cannot hold.\n"},
      {"a\tftp://u:p%20q@h:2121/%2Fpub/\nb ftps://h\n\nc sftp://u@h/\nd http://h/\ne ftp://h:x/\n"
       "f\n",
       "a=u:p q@h:2121/pub/ P0\nb=:@h:990 P2\nc !It is reached over SSH, which Corvane does not "
       "speak.\nd !It is reached over a protocol that Corvane does not speak.\ne !Its address "
       "cannot be read.\nf !Its address cannot be read.\n"},
      {"v6 ftp://[::1]/", "v6 !Its address holds a character that a shortcut cannot hold.\n"},
      {"Corvane shortcuts 2\nend\n", "The file was written by a newer version of Corvane."},
      {"Corvane shortcuts 1\nftp://h/ label=a\n", "The file is damaged: Its end is missing."},
      {"Corvane shortcuts 1\r\nftp://u@h/ label=a new=1\r\nend\r\n", "a=u:@h:21/ A0\n"},
      {"Corvane shortcuts 1\nftp://h/ label=%\nend\n",
       "The file is damaged: Line 2 cannot be read."},
      {"", "The file is empty."},
      {"machine\0h"s, kUnknown},
      {"just some words\n", kUnknown},
  };
  for (const auto& [bytes, expected] : cases) EXPECT_EQ(Read(bytes), expected) << bytes;
}

TEST(ShortcutImport, HasBounds) {
  const char* many = "The file holds more than 10,000 connections.";
  const auto repeat = [](const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += text;
    return all;
  };
  const std::size_t most = ShortcutImport::kMostEntries;
  EXPECT_EQ(ShortcutImport::Read(Sites(repeat("<Server/>", most))).entries.size(), most);
  for (const std::string& bytes :
       {Sites(repeat("<Server/>", most + 1)), repeat("machine h\n", most + 1),
        repeat("a ftp://h\n", most + 1), "Corvane shortcuts 1\n" + repeat("ftp://h\n", most + 1)}) {
    EXPECT_EQ(Read(bytes), many);
  }
  EXPECT_EQ(Read(Sites(repeat("<Folder>", 1000))), "The folders in this file are too deep.");
  const char* names = "The names of folders in this file are too long.";
  EXPECT_EQ(Read(Sites("<Folder>" + repeat("n", 1'001) + "<Server/></Folder>")), names);
  EXPECT_EQ(Read(Sites(repeat("<Folder>" + repeat("n", 1'000), 32) + repeat("<Server/>", 600) +
                       repeat("</Folder>", 32))),
            names);
  EXPECT_EQ(
      Read(Sites("<Folder>n" + repeat("\n  <Server><Host>h</Host></Server>", 500) + "</Folder>")),
      repeat("n/h=:@h:21 P0\n", 500));
  const std::string deep =
      repeat("<Folder>f", 90) + "<Server><Host>h</Host></Server>" + repeat("</Folder>", 90);
  EXPECT_EQ(std::ranges::count(Read(Sites(deep)), 'f'), kDeepestFolder);
  EXPECT_EQ(Read(repeat("machine h\n", std::size_t{2} << 20U)),
            "The file is longer than 16 MB: it is no list of connections.");
}

TEST(ShortcutImport, MarksWhatThereIsAlready) {
  ShortcutImport import = ShortcutImport::Read(
      "a ftp://h/pub\nb ftp://u@h/pub\nc ftp://anonymous@h/pub/\nd ftp://h:22/pub\ne sftp://h/\n");
  import.MarkKnown({{.site = {.host = "h", .user = "u", .path = "/pub/" } }});
  std::string known;
  for (const ImportedShortcut& entry : import.entries) known += entry.known ? 'k' : '-';
  EXPECT_EQ(known, "-kk--");
}

class WrittenFile : public ConfigTest {};

TEST_F(WrittenFile, ComesBackAsItWas) {
  const std::vector<Shortcut> all = {
      {.label = "a*b = c", .site = {.host = "h", .path = "/"}, .folder = "Work/Web"},
      {.label = "\xFF",
       .site = {.host = "::1",
                .port = 990,
                .user = "u:@/%",
                .password = "p w:@",
                .path = "/\xFF a:b//",
                .passive = true,
                .security = Security::Implicit,
                .encoding = "CP1251",
                .clientCertificate = "/a b/c.p12",
                .connections = 6},
       .folder = "Ä b"},
      {.label = "plain",
       .site = {.host = "odd host/",
                .port = 0,
                .user = "u",
                .path = "x",
                .security = Security::Plain,
                .asksPassword = true}},
      {.label = "", .site = {.host = "h", .user = "u", .path = "//", .keptPassword = true}},
      {.label = "", .site = {.host = "h", .path = "", .security = Security::Required}},
  };
  const std::vector<ShortcutFolder> folders = {{"Empty one"}, {"Work", false}, {"Work/Web"}};
  const auto read = [](const std::string& bytes) {
    std::vector<Shortcut> shortcuts;
    const ShortcutImport import = ShortcutImport::Read(bytes);
    for (const ImportedShortcut& entry : import.entries) shortcuts.push_back(entry.shortcut);
    return std::pair(shortcuts, import.folders);
  };
  EXPECT_EQ(read(WrittenShortcuts(all, folders, true)), std::pair(all, folders));
  const std::string without = WrittenShortcuts(all, folders, false);
  std::vector<Shortcut> expected = all;
  expected[1].site.password.clear();
  expected[1].site.keptPassword = true;
  EXPECT_EQ(read(without), std::pair(expected, folders));
  EXPECT_EQ(without.find("p%20w"), std::string::npos);

  const std::filesystem::path file = home_.Path() / "list";
  corvane::Write(file, "before");
  std::filesystem::permissions(file, std::filesystem::perms(0666));
  EXPECT_EQ(WritePrivateFile(file, without), Text());
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
  EXPECT_EQ(ShortcutImport::ReadFile(file).entries.size(), all.size());
  EXPECT_FALSE(WritePrivateFile(home_.Path() / "missing/list", without).IsEmpty());
  ASSERT_EQ(::mkfifo((home_.Path() / "pipe").c_str(), 0600), 0);
  for (const char* wrong : {"", "pipe", "missing"}) {
    EXPECT_FALSE(ShortcutImport::ReadFile(home_.Path() / wrong).failure.IsEmpty()) << wrong;
  }
}

}  // namespace
}  // namespace corvane
