#include "app/CommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane {
namespace {

std::string Summary(const std::vector<std::string>& arguments) {
  const CommandLine line = CommandLine::Read(arguments);
  if (line.usage) return "usage";
  if (!line.open.has_value()) return "";
  std::string text;
  for (const char* name : {"user", "pass", "host", "path"}) {
    if (const auto value = line.open->FindString(name)) text += name + ("=" + *value) + " ";
  }
  const auto port = line.open->FindInt16("port");
  return port ? text + "port=" + std::to_string(static_cast<std::uint16_t>(*port)) : text;
}

TEST(CommandLine, IsReadAsWritten) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{}, ""},
      {{"ftp://h/pub/"}, "host=h path=/pub/ "},
      {{"ftp://h/"}, "host=h "},
      {{"ftp://p@h/x"}, "pass=p host=h path=/x "},
      {{"ftp://h:2121/"}, "user=h host=2121 "},
      {{"ftp://u:p@h:65535/a:b@c"}, "user=u pass=p host=h path=/a:b@c port=65535"},
      {{"ftp://u:p@h:0/"}, "usage"},
      {{"ftp://u:p@h:99999/"}, "usage"},
      {{"ftp://"}, ""},
      {{"h/pub"}, ""},
      {{"-deskbar"}, "usage"},
      {{"ftp://h", "ftp://i"}, "usage"},
  };
  for (const auto& [arguments, result] : cases) {
    EXPECT_EQ(Summary(arguments), result) << testing::PrintToString(arguments);
  }
}

}  // namespace
}  // namespace corvane
