#include "app/shared/CommandLine.h"

#include "app/shared/OpenMessage.h"
#include "util/Url.h"

namespace corvane {

CommandLine CommandLine::Read(std::span<const std::string> arguments) {
  CommandLine line;
  if (arguments.empty()) return line;
  const bool login = arguments.size() == 2 && arguments.back() == "login";
  if (arguments.front() == "-deskbar" && (arguments.size() == 1 || login)) {
    line.deskbar = true;
    line.login = login;
  } else if (arguments.size() > 1 || arguments.front().starts_with('-')) {
    line.usage = true;
  } else if (Url::IsMeant(arguments.front())) {
    const auto url = Url::Read(arguments.front());
    line.usage = !url.has_value();
    if (url.has_value()) line.open = OpenMessage(*url);
  }
  return line;
}

}  // namespace corvane
