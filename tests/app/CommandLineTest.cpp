#include "app/CommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/TambleApp.h"

namespace corvane {
namespace {

std::string Summary(const std::vector<std::string>& arguments) {
  const CommandLine line = CommandLine::Read(arguments);
  if (line.usage) return "usage";
  if (!line.open.has_value()) return "";
  std::string text;
  for (const char* name : {"user", "pass", "host", "path"}) {
    if (const auto value = line.open->FindString(name)) {
      text += std::string(name) + "=" + *value + " ";
    }
  }
  if (const auto port = line.open->FindInt16("port")) {
    text += "port=" + std::to_string(static_cast<std::uint16_t>(*port)) + " ";
  }
  return text;
}

TEST(CommandLine, IsReadAsWritten) {
  struct Case {
    std::vector<std::string> arguments;
    const char* result;
  };
  for (const Case& c : {
           Case{{}, ""},
           Case{{"ftp://h/pub/"}, "host=h path=/pub/ "},
           Case{{"ftp://h/"}, "host=h "},
           Case{{"ftp://h"}, "host=h "},
           Case{{"ftp://u:p@h"}, "user=u pass=p host=h "},
           Case{{"ftp://p@h/x"}, "pass=p host=h path=/x "},
           Case{{"ftp://h:2121/"}, "user=h host=2121 "},
           Case{{"ftp://u:p@h:2121/a:b@c"}, "user=u pass=p host=h path=/a:b@c port=2121 "},
           Case{{"ftp://u:p@h:65535"}, "user=u pass=p host=h port=65535 "},
           Case{{"ftp://u:p@h:0/"}, "usage"},
           Case{{"ftp://u:p@h:99999/"}, "usage"},
           Case{{"ftp://"}, ""},
           Case{{"h/pub"}, ""},
           Case{{"-deskbar"}, "usage"},
           Case{{"ftp://h", "ftp://i"}, "usage"},
       }) {
    EXPECT_EQ(Summary(c.arguments), c.result)
        << (c.arguments.empty() ? "no arguments" : c.arguments.front());
  }
}

TEST(Frame, IsFittedIntoTheScreen) {
  const Rect screen{0, 0, 1279, 899};
  struct Case {
    Rect frame;
    Rect fitted;
  };
  for (const Case& c : {
           Case{{120, 50, 560, 530}, {120, 50, 560, 530}},
           Case{{-50, -9, 560, 530}, {3, 3, 560, 530}},
           Case{{800, 500, 1400, 980}, {800, 500, 1276, 896}},
           Case{{700, 50, 1000, 530}, {15, 50, 435, 530}},
       }) {
    EXPECT_EQ(TambleApp::FitFrame(c.frame, screen), c.fitted) << c.frame.left;
  }
}

}  // namespace
}  // namespace corvane
