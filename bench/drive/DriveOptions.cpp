#include "DriveOptions.h"

#include <charconv>
#include <cstdint>
#include <functional>
#include <map>

#include "util/Url.h"

namespace corvane::drive {
namespace {

std::optional<std::int64_t> Number(const std::string& text) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < 0) return std::nullopt;
  return value;
}

// What an option does with its value; the text tells why it cannot.
using Option = std::function<std::string(Options&, const std::string& value)>;

std::string SetConnections(Options& options, const std::string& value) {
  constexpr std::int64_t kMost = 64;
  const auto number = Number(value);
  if (!number || *number == 0 || *number > kMost) return "is no number of connections";
  options.connections = static_cast<std::int32_t>(*number);
  return "";
}

std::string SetPolicy(Options& options, const std::string& value) {
  const std::map<std::string, Policy> policies = {
      {"create", Policy::CreateNew}, {"replace", Policy::Replace}, {"resume", Policy::Resume},
      {"skip", Policy::Skip},        {"newer", Policy::Newer},     {"both", Policy::KeepBoth}};
  const auto found = policies.find(value);
  if (found == policies.end()) return "is no policy";
  options.policy = found->second;
  return "";
}

std::string SetTls(Options& options, const std::string& value) {
  const std::map<std::string, Security> ways = {{"auto", Security::Automatic},
                                                {"required", Security::Required},
                                                {"implicit", Security::Implicit},
                                                {"none", Security::Plain}};
  const auto found = ways.find(value);
  if (found == ways.end()) return "is no way of encrypting";
  options.site.security = found->second;
  return "";
}

std::string SetCancelAfter(Options& options, const std::string& value) {
  const auto number = Number(value);
  if (!number) return "is no number of milliseconds";
  options.cancelAfter = std::chrono::milliseconds(*number);
  return "";
}

std::string SetLimit(Options& options, const std::string& value) {
  const auto number = Number(value);
  if (!number) return "is no number of bytes";
  options.limit = *number;
  return "";
}

std::string SetTries(Options& options, const std::string& value) {
  constexpr std::int64_t kMost = 1000;
  const auto number = Number(value);
  if (!number || *number > kMost) return "is no number of tries";
  options.tries = static_cast<int>(*number);
  return "";
}

std::string SetSilence(Options& options, const std::string& value) {
  const auto number = Number(value);
  if (!number) return "is no number of milliseconds";
  options.waits = Waits::All(static_cast<long>(*number));
  return "";
}

const std::map<std::string, Option>& WithValue() {
  static const std::map<std::string, Option> options = {
      {"--connections", SetConnections},  {"--policy", SetPolicy}, {"--tls", SetTls},
      {"--cancel-after", SetCancelAfter}, {"--limit", SetLimit},   {"--tries", SetTries},
      {"--silence", SetSilence},
  };
  return options;
}

const std::map<std::string, Option>& WithoutValue() {
  static const std::map<std::string, Option> options = {
      {"--active",
       [](Options& asked, const std::string&) {
         asked.site.passive = false;
         return "";
       }},
      {"--json",
       [](Options& asked, const std::string&) {
         asked.json = true;
         return "";
       }},
      {"--resume",
       [](Options& asked, const std::string&) {
         asked.resumes = true;
         return "";
       }},
      {"--trust-any",
       [](Options& asked, const std::string&) {
         asked.trustsAny = true;
         return "";
       }},
  };
  return options;
}

// Words that are no options; false where an option is wrong.
bool TakeOptions(const std::vector<std::string>& words, Options& options,
                 std::vector<std::string>& rest, std::string& problem) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    std::string refusal;
    if (const auto plain = WithoutValue().find(word); plain != WithoutValue().end()) {
      refusal = plain->second(options, "");
    } else if (const auto valued = WithValue().find(word); valued != WithValue().end()) {
      if (++i == words.size()) refusal = "needs a value";
      if (refusal.empty()) refusal = valued->second(options, words[i]);
    } else if (word.starts_with("--")) {
      refusal = "is unknown";
    } else {
      rest.push_back(word);
    }
    if (refusal.empty()) continue;
    problem = word + (i < words.size() && words[i] != word ? " " + words[i] : "") + ": " + refusal;
    return false;
  }
  return true;
}

bool TakeSite(const std::string& text, Site& site, std::string& problem) {
  const std::optional<Url> url = Url::Read(text);
  if (!url) {
    problem = text + ": is no FTP address";
    return false;
  }
  site.host = url->host;
  site.port = url->port.value_or(site.port);
  site.user = url->user.empty() ? "anonymous" : url->user;
  site.password = url->user.empty() ? kGuest : url->password;
  site.path = url->path.empty() ? "/" : url->path;
  return true;
}

// "get URL LOCAL" and "put URL LOCAL", one after another; false where they are something else.
bool TakeAsked(const std::vector<std::string>& words, Options& options, std::string& problem) {
  if (words.size() % 3 != 0) return false;
  for (std::size_t i = 0; i < words.size(); i += 3) {
    if (words[i] != "get" && words[i] != "put") return false;
    Asked asked{words[i] == "get", options.site, words[i + 2]};
    if (!TakeSite(words[i + 1], asked.site, problem)) return false;
    options.asked.push_back(std::move(asked));
  }
  return true;
}

}  // namespace

std::optional<Options> Read(const std::vector<std::string>& words, std::string& problem) {
  const std::map<std::string, std::pair<std::size_t, std::size_t>> commands = {
      {"get", {1, 2}},    {"put", {2, 2}},    {"list", {1, 1}},
      {"remove", {1, 1}}, {"rename", {2, 2}}, {"chmod", {2, 2}},
      {"mkdir", {1, 1}},  {"parse", {1, 1}},  {"queue", {1, 1000}}};
  const auto command = words.empty() ? commands.end() : commands.find(words.front());
  if (command == commands.end()) return std::nullopt;
  Options options;
  options.command = words.front();
  options.site.passive = true;
  std::vector<std::string> rest;
  if (!TakeOptions({words.begin() + 1, words.end()}, options, rest, problem)) return std::nullopt;
  if (rest.size() < command->second.first || rest.size() > command->second.second)
    return std::nullopt;
  if (options.command == "queue") {
    options.local = rest.front();
    if (!TakeAsked({rest.begin() + 1, rest.end()}, options, problem)) return std::nullopt;
    return options;
  }
  options.local = rest.back();
  if (options.command == "parse") return options;
  if (!TakeSite(rest.front(), options.site, problem)) return std::nullopt;
  if (rest.size() == 1) options.local = ".";
  return options;
}

}  // namespace corvane::drive
