#include "workers/AdviceFor.h"

#include <algorithm>
#include <utility>

namespace corvane {
namespace {

using Fix = Advice::Fix;
using Kind = DiagnosisStep::Kind;
using Sign = DiagnosisStep::Sign;

Advice Made(Fix fix, Text verdict, Text heading, Text reason) {
  return {.fix = fix,
          .verdict = std::move(verdict),
          .heading = std::move(heading),
          .reason = std::move(reason)};
}

const DiagnosisStep* Of(std::span<const DiagnosisStep> steps, Kind kind) {
  const auto found = std::ranges::find(steps, kind, &DiagnosisStep::kind);
  return found == steps.end() ? nullptr : &*found;
}

bool Works(const DiagnosisStep* step) {
  return step != nullptr && (step->sign == Sign::Good || step->sign == Sign::Caution);
}

// Where the connection does not come about.
Advice OfReaching(const DiagnosisStep& step, const Site& site) {
  const Text network("Check that this computer is online, and whether a firewall is in between.");
  switch (step.finding) {
    case Finding::UnknownName:
      return Made(Fix::EditSite, Text("The server’s name is not known."), Text("Check the name."),
                  Text("It may be misspelt. If other names are not found either, this computer is "
                       "not online."));
    case Finding::NoWay:
      return Made(Fix::Connect, Text("This computer has no way to the server."),
                  Text("Check the network, then connect again."), network);
    case Finding::ProxyFails:
      return Made(Fix::TellOperator, Text("The proxy does not lead to the server."),
                  Text("Check the proxy in the preferences."),
                  Text("It refuses, or is not there. Whoever runs it knows what it lets through."));
    case Finding::PortClosed:
      return Made(
          Fix::EditSite, Text("Nothing takes connections at port %1.", site.port),
          Text("Check the port."),
          Text("The machine is there, but no server listens at this port. It may be another "
               "port, or the server may not be running."));
    case Finding::OtherPort:
      return Made(
          Fix::ChangePort, Text("Port %1 is the wrong one.", site.port),
          Text("Use port %1.", step.port),
          Text("A server takes connections there, and none at the port of the connection."));
    default: break;
  }
  return Made(Fix::TellOperator, Text("Nothing comes from port %1.", site.port),
              Text("Check the address, and tell whoever runs the server."), network);
}

// Where something else than the server that was expected is at the port.
Advice OfGreeting(const DiagnosisStep& step, const Site& site) {
  switch (step.finding) {
    case Finding::Ssh:
      return Made(Fix::EditSite, Text("An SSH server is at port %1.", site.port),
                  Text("Choose another port."),
                  Text("FTP and SFTP are different things. The port of FTP is 21 as a rule; a "
                       "server that has SFTP only cannot be reached with Corvane."));
    case Finding::Web:
      return Made(Fix::EditSite, Text("A web server is at port %1.", site.port),
                  Text("Choose another port."), Text("The port of FTP is 21 as a rule."));
    case Finding::EncryptsAtOnce:
      return Made(Fix::EncryptAtOnce, Text("The server wants encryption from the first byte on."),
                  Text("Choose “Always, from the first byte on” as the encryption."),
                  Text("The server waits for Corvane to encrypt before it says anything."));
    case Finding::TooMany:
      return Made(Fix::Connect, Text("The server takes no more connections at the moment."),
                  Text("Wait a little, then connect again."),
                  Text("Close other windows and programs that are connected with this server."));
    case Finding::Strange:
      return Made(Fix::EditSite, Text("No FTP server is at port %1.", site.port),
                  Text("Choose another port."), Text("The port of FTP is 21 as a rule."));
    default: break;
  }
  return Made(Fix::TellOperator, Text("The server does not greet."),
              Text("Tell whoever runs the server."),
              Text("It takes the connection and then says nothing, or turns it away."));
}

Advice OfCertificate(const DiagnosisStep& step) {
  const Text look(
      "The certificate is shown before anything is sent. Compare its fingerprint with "
      "what whoever runs the server tells you.");
  switch (step.finding) {
    case Finding::CertificateExpired:
      return Made(Fix::Connect, Text("The server’s certificate is not valid today."),
                  Text("Tell whoever runs the server, or look at the certificate yourself."), look);
    case Finding::CertificateOfOther:
      return Made(Fix::EditSite, Text("The certificate was made out to another name."),
                  Text("Use a name that stands in the certificate."),
                  Text("The server may be known by several names, or another one may stand in its "
                       "place."));
    case Finding::CertificateChanged:
      return Made(Fix::Connect, Text("The server shows another certificate than before."),
                  Text("Ask whoever runs the server whether it is theirs."), look);
    default: break;
  }
  return Made(Fix::Connect, Text("The server’s certificate is not trusted."),
              Text("Look at the certificate, then decide."), look);
}

Advice OfEncryption(const DiagnosisStep& step) {
  const Text plain(
      "Without encryption everybody on the way can read the password. Only you can "
      "allow that, in the connection’s settings.");
  switch (step.finding) {
    case Finding::NoEncryption:
      return Made(Fix::EditSite, Text("The server does not encrypt."),
                  Text("Ask for encryption, or change the connection’s."), plain);
    case Finding::LostEncryption:
      return Made(Fix::TellOperator, Text("The server does not encrypt any more."),
                  Text("Ask whoever runs the server why."),
                  Text("It was encrypted before: another machine may stand in its place."));
    case Finding::PlainPassword:
      return Made(Fix::Connect, Text("The server does not encrypt."),
                  Text("Connect only if the password may be read on the way."),
                  Text("You are asked once more before it is sent."));
    case Finding::EncryptionHangs:
      return Made(Fix::EditSite, Text("The server falls silent when encryption is asked for."),
                  Text("Choose another kind of encryption."),
                  Text("A firewall that does not know encrypted FTP may stand in between. "
                       "“Always, from the first byte on” may go through."));
    case Finding::EncryptsLater:
      return Made(Fix::EncryptByCommand,
                  Text("The server does not encrypt from the first byte on."),
                  Text("Choose “Always” as the encryption."),
                  Text("The server greets first. Nothing of yours is sent before it encrypts."));
    case Finding::OwnCertificate:
      return Made(Fix::EditSite, Text("Your own certificate cannot be used."),
                  Text("Choose its file anew."),
                  Text("It is locked, damaged or gone. If it has a passphrase, connect and enter "
                       "it."));
    case Finding::CertificateExpired:
    case Finding::CertificateOfOther:
    case Finding::CertificateUnknown:
    case Finding::CertificateChanged: return OfCertificate(step);
    default: break;
  }
  return Made(Fix::TellOperator, Text("The encryption does not come about."),
              Text("Tell whoever runs the server."),
              Text("Its encryption is out of date, or something on the way disturbs it."));
}

Advice OfLogin(const DiagnosisStep& step, const Site& site) {
  switch (step.finding) {
    case Finding::NeedsEncryption:
      return Made(Fix::EncryptByCommand, Text("The server lets nobody in without encryption."),
                  Text("Choose “Always” as the encryption."),
                  Text("The connection is set to stay unencrypted."));
    case Finding::NotAnonymous:
      return Made(Fix::EditSite, Text("The server lets nobody in without a name."),
                  Text("Enter your user name and password."),
                  Text("You get them from whoever runs the server."));
    case Finding::Locked:
      return Made(Fix::TellOperator, Text("The account of %1 is locked.", site.user),
                  Text("Ask whoever runs the server to unlock it."),
                  Text("Name and password may be right all the same."));
    case Finding::TooMany: return OfGreeting(step, site);
    case Finding::DataUnprotected:
      return Made(Fix::TellOperator, Text("The server does not encrypt listings and transfers."),
                  Text("Tell whoever runs the server."),
                  Text("Only the login would be encrypted, and what you transfer could be read."));
    case Finding::WrongLogin:
      return Made(Fix::OtherPassword, Text("The server does not accept %1.", site.user),
                  Text("Enter the password again."),
                  Text("The name or the password is not right. Capitals count."));
    default: break;
  }
  return Made(Fix::TellOperator, Text("The server lets nobody in at the moment."),
              Text("Try again later, or tell whoever runs the server."),
              Text("What it says stands beside the step."));
}

Advice OfDirectory() {
  return Made(Fix::StartElsewhere, Text("The directory cannot be opened."),
              Text("Begin where the server puts you."),
              Text("The directory of the connection is not there, or you have no rights in it."));
}

Advice OfListing(const DiagnosisStep& step) {
  if (step.finding == Finding::StrangeListing)
    return Made(Fix::TellOperator, Text("The listing is not understood."),
                Text("Send the report to whoever runs the server."),
                Text("The server lists in a form of its own."));
  return Made(Fix::TellOperator, Text("The server gives no listing."),
              Text("Tell whoever runs the server."),
              Text("You may have no right to list this directory."));
}

// One way of the two is enough, but it should be the one that the site has.
Advice OfData(const DiagnosisStep* active, const DiagnosisStep* passive, const Site& site) {
  if (Works(passive) && !site.passive)
    return Made(Fix::TurnOnPassive, Text("Listings do not come in active mode."),
                Text("Turn on “Passive Connection”."),
                Text("A router or a firewall at your side lets nothing in. With the passive mode "
                     "Corvane opens all connections itself."));
  if (Works(active) && site.passive)
    return Made(
        Fix::TurnOffPassive, Text("Listings do not come in passive mode."),
        Text("Turn off “Passive Connection”."),
        Text("A firewall at the server’s side closes the ports that the server offers. With "
             "the active mode the server opens the connections."));
  return Made(Fix::TellOperator, Text("No listing comes in either mode."),
              Text("Tell whoever runs the server that its passive ports are closed."),
              Text("A firewall lets commands through, and no data."));
}

// What does not keep anybody from working.
Advice OfCaution(const DiagnosisStep& step) {
  const Text fine("Nothing stands in the way of a connection.");
  const auto note = [&fine](Text heading, Text reason) {
    return Made(Fix::Connect, fine, std::move(heading), std::move(reason));
  };
  switch (step.finding) {
    case Finding::DeadAddress:
      return note(
          Text("One of the server’s addresses leads nowhere."),
          Text("Corvane takes the other one. Whoever runs the server or your network should "
               "mend it."));
    case Finding::PrivateAddress:
      return note(
          Text("The server names a wrong address for its data."),
          Text("Corvane takes the right one. Other programs may fail: tell whoever runs the "
               "server."));
    case Finding::NoOptions:
      return note(Text("Hidden files cannot be listed."),
                  Text("The server refuses the options for that. The rest works."));
    case Finding::DosListing:
      return note(Text("The server lists as DOS does."),
                  Text("Corvane understands that; rights and owners are not told."));
    case Finding::NoResume:
      return note(Text("Broken transfers begin anew."),
                  Text("The server cannot go on within a file."));
    case Finding::ClockAhead:
      return note(Text("The server’s clock is ahead."),
                  Text("What is newer cannot be told by the time. Tell whoever runs the server."));
    case Finding::OtherZone:
      return note(Text("Listings tell the server’s own time."),
                  Text("Times in listings are not those of your clock."));
    default: break;
  }
  return note(Text("Connect again."), Text("What was wrong has passed, or comes and goes."));
}

void Mend(Site& site, Fix fix, std::uint16_t port) {
  const Security before = site.security;
  switch (fix) {
    case Fix::TurnOnPassive: site.passive = true; break;
    case Fix::TurnOffPassive: site.passive = false; break;
    case Fix::EncryptAtOnce: site.security = Security::Implicit; break;
    case Fix::EncryptByCommand: site.security = Security::Required; break;
    case Fix::StartElsewhere: site.path.clear(); break;
    case Fix::ChangePort:
      // At this port encryption begins at once.
      if (port == UsualPort(Security::Implicit))
        site.security = Security::Implicit;
      else if (before == Security::Implicit)
        site.security = Security::Required;
      site.port = port;
      break;
    case Fix::OtherPassword:
      site.password.clear();
      site.keptPassword = false;
      site.asksPassword = true;
      break;
    case Fix::Connect:
    case Fix::EditSite:
    case Fix::TellOperator: break;
  }
}

Advice OfBad(const DiagnosisStep& step, std::span<const DiagnosisStep> steps, const Site& site) {
  switch (step.kind) {
    case Kind::Address:
    case Kind::Route:
    case Kind::Port: return OfReaching(step, site);
    case Kind::Greeting: return OfGreeting(step, site);
    case Kind::Encryption: return OfEncryption(step);
    case Kind::Login: return OfLogin(step, site);
    case Kind::Directory: return OfDirectory();
    case Kind::Active:
    case Kind::Passive:
      if (step.finding == Finding::ListingRefused) return OfListing(step);
      return OfData(Of(steps, Kind::Active), Of(steps, Kind::Passive), site);
    case Kind::Features:
    case Kind::Listing:
    case Kind::Resume:
    case Kind::Clock: break;
  }
  return OfListing(step);
}

}  // namespace

Advice AdviceFor(const Site& site, std::span<const DiagnosisStep> steps) {
  const DiagnosisStep* const used = Of(steps, site.passive ? Kind::Passive : Kind::Active);
  // The other mode is of no matter where the site's own works, nor where nothing can use it.
  const auto matters = [&](const DiagnosisStep& step) {
    const bool isData = step.kind == Kind::Active || step.kind == Kind::Passive;
    return step.sign == Sign::Bad && !(isData && Works(used));
  };
  const auto isNoted = [](const DiagnosisStep& step) {
    return step.sign == Sign::Caution && step.finding != Finding::NotEncrypted;
  };
  auto which = std::ranges::find_if(steps, matters);
  if (which != steps.end()) {
    Advice advice = OfBad(*which, steps, site);
    advice.about = which->finding;
    advice.site = site;
    Mend(advice.site, advice.fix, which->port);
    return advice;
  }
  which = std::ranges::find_if(steps, isNoted);
  Advice advice = OfCaution(which == steps.end() ? DiagnosisStep() : *which);
  if (which != steps.end()) advice.about = which->finding;
  advice.site = site;
  return advice;
}

}  // namespace corvane
