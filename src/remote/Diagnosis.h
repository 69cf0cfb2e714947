#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "kit/Text.h"
#include "remote/Site.h"

namespace corvane {

/// What a step of a diagnosis has found, where that is not simply well.
enum class Finding : std::uint8_t {
  Nothing,
  UnknownName,
  NoWay,        ///< this machine has no way to any address of the server
  DeadAddress,  ///< one of the server's addresses leads nowhere, another does
  ProxyFails,   ///< the proxy is not there, or does not lead on
  PortClosed,   ///< the machine is there, and nothing serves the port
  PortSilent,   ///< nothing comes from there
  OtherPort,    ///< the port is no good, and another is: DiagnosisStep::port
  Ssh,          ///< another service in place of a file server
  Web,
  Strange,
  Mute,             ///< the port takes connections, and nothing is said
  EncryptsAtOnce,   ///< the server wants encryption from the first byte on
  EncryptsLater,    ///< the server wants plain text before encryption
  NoEncryption,     ///< the server has none, and the site wants it
  LostEncryption,   ///< the server had encryption before
  PlainPassword,    ///< the user is to be asked before the password goes unencrypted
  NotEncrypted,     ///< as the site allows
  EncryptionHangs,  ///< nothing comes once encryption was asked for
  EncryptionFails,
  OwnCertificate,  ///< the client's certificate cannot be used
  CertificateExpired,
  CertificateOfOther,  ///< made out to another host
  CertificateUnknown,
  CertificateChanged,
  NeedsEncryption,  ///< the server lets nobody in without
  DataUnprotected,  ///< the server encrypts the login, and not the data
  WrongLogin,
  NotAnonymous,
  Locked,
  TooMany,
  Unavailable,
  NoDirectory,  ///< the directory to begin with cannot be entered
  NoActive,
  NoPassive,
  PrivateAddress,  ///< a passive port is told with an address that does not lead there
  ListingRefused,
  NoOptions,  ///< listings come without their options only
  DosListing,
  StrangeListing,
  NoResume,
  ClockAhead,
  OtherZone,  ///< listings tell another zone's times
  Overtime,   ///< the time for the step, or for all, was up
};

/// One step of a diagnosis, and what became of it. A value.
struct DiagnosisStep {
  enum class Kind : std::uint8_t {
    Address,
    Route,
    Port,
    Greeting,
    Encryption,
    Login,
    Features,
    Directory,
    Active,
    Passive,
    Listing,
    Resume,
    Clock,
  };
  enum class Sign : std::uint8_t { Running, Good, Caution, Bad, LeftOut };

  Kind kind = Kind::Address;
  Sign sign = Sign::Running;
  Text name{};
  Text seen{};  ///< a sentence; empty where a step was left out because one before it is bad
  Finding finding = Finding::Nothing;
  std::uint16_t port = 0;  ///< the one that would do, where that was found
  std::chrono::milliseconds took{};
};

/// What is to be done after a diagnosis. A value.
struct Advice {
  /// What does it.
  enum class Fix : std::uint8_t {
    Connect,           ///< nothing is to be changed; who connects is asked what is open
    TurnOnPassive,     ///< these connect with `site` as it is mended
    TurnOffPassive,    //
    ChangePort,        //
    EncryptAtOnce,     //
    EncryptByCommand,  //
    StartElsewhere,    ///< without the directory to begin with
    OtherPassword,     ///< the user gives another one
    EditSite,          ///< the user changes the site by hand
    TellOperator,      ///< nothing here helps: the report does
  };

  Fix fix = Fix::Connect;
  Finding about = Finding::Nothing;
  Text verdict{};  ///< what is wrong, in a sentence
  Text heading{};  ///< what to do
  Text reason{};   ///< why
  Site site{};     ///< to connect to
};

/// What shows a diagnosis. Any thread may call; every call returns at once, and false once it is
/// closing.
class DiagnosisUi {
 public:
  virtual ~DiagnosisUi() = default;
  /// A step begins (Running), and again once it is over.
  virtual bool ShowStep(const DiagnosisStep& step) = 0;
  /// The last call.
  virtual bool ShowAdvice(const Advice& advice) = 0;
};

/// Looks at a server step by step, whatever its protocol. One thread; Close, Interrupt and Resume
/// from any. Nothing is written there, and nothing given away that a connection to the site would
/// not give. Nobody is asked, and nothing is remembered. No call throws.
class Examination {
 public:
  virtual ~Examination() = default;

  [[nodiscard]] virtual const Site& Where() const = 0;
  /// In the order in which they are to be taken.
  [[nodiscard]] virtual std::vector<DiagnosisStep::Kind> Steps() const = 0;
  [[nodiscard]] virtual Text NameOf(DiagnosisStep::Kind kind) const = 0;
  /// Takes a step. Those before it have been taken, the last of them as far as Login well.
  [[nodiscard]] virtual DiagnosisStep Take(DiagnosisStep::Kind kind) = 0;

  /// Says good-bye to the server.
  virtual void End() = 0;

  /// Any thread: ends the step that is taken soon; the next one begins once Resume was called.
  virtual void Interrupt() = 0;
  virtual void Resume() = 0;
  /// Any thread: ends all for good.
  virtual void Close() = 0;
};

}  // namespace corvane
