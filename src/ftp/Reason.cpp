#include "ftp/Reason.h"

#include <string_view>

#include "net/NLException.h"

namespace corvane {
namespace {

// OpenSSL's words, and those about it, for what people meet; empty for the others.
Text Plainer(std::string_view words) {
  if (words == "The server closed the connection") return Text("The server closed the connection");
  if (words == "The server does not answer") return Text("The server does not answer");
  const auto isOneOf = [words](auto... others) { return ((words == others) || ...); };
  if (isOneOf("wrong version number", "packet length too long", "record layer failure"))
    return Text("The server does not speak TLS here.");
  if (isOneOf("unsupported protocol", "tlsv1 alert protocol version"))
    return Text("The server has no TLS 1.2 or newer.");
  if (isOneOf("sslv3 alert handshake failure", "no shared cipher", "no protocols available"))
    return Text("The server and Corvane have no way of encrypting in common.");
  if (isOneOf("tlsv13 alert certificate required", "sslv3 alert bad certificate",
              "sslv3 alert certificate unknown", "tlsv1 alert unknown ca"))
    return Text("The server lets in only who shows a certificate that it knows.");
  if (words == "decryption failed or bad record mac")
    return Text("What came was changed on its way.");
  return {};
}

}  // namespace

Text Reason(const NLException& error) {
  constexpr std::string_view kMarker = " failed: ";
  std::string_view words = error.message;
  const std::size_t marker = words.find(kMarker);
  if (marker != std::string_view::npos) words.remove_prefix(marker + kMarker.size());
  Text plainer = Plainer(words);
  return plainer.IsEmpty() ? Text::Raw(words) : plainer;
}

}  // namespace corvane
