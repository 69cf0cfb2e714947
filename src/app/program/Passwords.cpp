#include "app/program/Passwords.h"

#include <QPointer>
#include <algorithm>
#include <set>
#include <utility>

#include "app/shared/Alerts.h"
#include "app/shared/GuiThread.h"
#include "app/shared/ScreenText.h"
#include "kit/Background.h"
#include "settings/ProcessSettings.h"
#include "settings/StoredSettings.h"
#include "sites/ProxyOf.h"
#include "sites/ShortcutStore.h"

namespace corvane {
namespace {

using Result = SecretStore::Result;
using Prompt = SecretStore::Prompt;

/// Runs `work` behind the windows and hands what it returns to `then`.
template <typename Work, typename Then>
void Behind(Work work, Then then) {
  const bool started = Background::Start("passwords", [work, then] {
    OnGuiThread([then, done = work()]() mutable { then(std::move(done)); });
  });
  if (!started) then({});
}

/// A failure where no thread could be had.
struct Answer {
  Result result = Result::Failed;
  std::string secret{};
};

// The work of a lookup, for a thread of its own.
auto LookingUp(std::shared_ptr<SecretStore> store, SecretKey key, Prompt prompt) {
  return [store = std::move(store), key = std::move(key), prompt] {
    Answer answer;
    answer.result = store->Lookup(key, prompt, answer.secret);
    return answer;
  };
}

struct Saved {
  std::vector<Shortcut> shortcuts;
  Result worst = Result::Done;
};

Text WordFor(Result result) {
  switch (result) {
    case Result::Done:
    case Result::Missing: return {};
    case Result::NoService:
      return Text("No keyring runs: passwords stand in a file that only you can read.");
    case Result::Locked:
      return Text("The keyring is locked: passwords stand in a file that only you can read.");
    case Result::Failed: break;
  }
  return Text("The keyring does not work: passwords stand in a file that only you can read.");
}

/// Whether the line of a shortcut can hold its password.
bool FitsItsLine(const Shortcut& shortcut) {
  Shortcut without = shortcut;
  without.site.keptPassword = true;
  return ShortcutStore::ComesBack(shortcut) == ShortcutStore::ComesBack(without);
}

void AskEachTime(Site& site) {
  site.password.clear();
  site.asksPassword = true;
}

/// Saves passwords in the store, and asks the user to unlock it once at most.
class Keeper {
 public:
  explicit Keeper(SecretStore& store) : store_(store) {}

  Shortcut Keep(const EditedShortcut& edited) {
    Shortcut shortcut = edited.shortcut;
    Site& site = shortcut.site;
    if (IsSecret(site)) {
      site.keptPassword = Note(store_.Save(KeyOf(site), site.password, prompt_)) == Result::Done;
      if (site.keptPassword) site.password.clear();
      if (!site.keptPassword && !FitsItsLine(shortcut)) AskEachTime(site);
    } else if (site.keptPassword && edited.keptAs && *edited.keptAs != KeyOf(site)) {
      std::string secret;
      const bool found = store_.Lookup(*edited.keptAs, prompt_, secret) == Result::Done;
      if (!found) prompt_ = Prompt::Never;
      // What the keyring does not take stands in the line, as a new password would.
      if (found && Note(store_.Save(KeyOf(site), secret, prompt_)) != Result::Done) {
        site.password = std::move(secret);
        site.keptPassword = false;
        if (!FitsItsLine(shortcut)) AskEachTime(site);
      }
    }
    return shortcut;
  }
  [[nodiscard]] Result Worst() const { return worst_; }

 private:
  Result Note(Result result) {
    if (result != Result::Done) {
      worst_ = result;
      prompt_ = Prompt::Never;
    }
    return result;
  }

  SecretStore& store_;
  Prompt prompt_ = Prompt::Allowed;
  Result worst_ = Result::Done;
};

std::set<SecretKey> KeptKeys(const std::vector<Shortcut>& shortcuts) {
  std::set<SecretKey> keys;
  for (const Shortcut& shortcut : shortcuts) {
    if (shortcut.site.keptPassword) keys.insert(KeyOf(shortcut.site));
  }
  return keys;
}

}  // namespace

bool Passwords::Wanted() const {
  return store_ != nullptr && ProcessSettings::Get().useKeyring;
}

// A proxy whose password is not found refuses the login, and says so.
void Passwords::FindOfProxy(QWidget* window, const Site& site, Found found) {
  Behind(LookingUp(store_, KeyOf(*site.proxy), Prompt::Allowed),
         [self = QPointer(this), over = QPointer(window), site,
          found = std::move(found)](Answer answer) {
           if (self.isNull() || over.isNull()) return;
           Site whole = site;
           whole.proxy->kept = false;  // it has been looked for
           if (answer.result == Result::Done) {
             whole.proxy->password = std::move(answer.secret);
             SettingsValues settings = ProcessSettings::Get();
             settings.proxyPassword = whole.proxy->password;
             ProcessSettings::Set(std::move(settings));
           }
           self->Find(over, whole, found);
         });
}

void Passwords::MoveProxyOver(const Site& site) {
  if (!Wanted() || !site.proxy || site.proxy->password.empty()) return;
  if (!StoredSettings::HoldsProxyPassword()) return;
  const auto work = [store = store_, proxy = *site.proxy] {
    return Answer{store->Save(KeyOf(proxy), proxy.password, Prompt::Never)};
  };
  Behind(work, [proxy = *site.proxy](const Answer& answer) {
    const auto now = ProxyOf(ProcessSettings::Get());
    const bool same = now && KeyOf(*now) == KeyOf(proxy) && now->password == proxy.password;
    if (answer.result == Result::Done && same) (void)StoredSettings::TakeOutProxyPassword();
  });
}

void Passwords::Find(QWidget* window, const Site& site, Found found) {
  const bool ofProxy = site.proxy && site.proxy->kept && site.proxy->password.empty();
  if (ofProxy && store_ != nullptr) return FindOfProxy(window, site, std::move(found));
  if (!site.password.empty() || (!site.keptPassword && !site.asksPassword))
    return found(site, false);
  if (site.asksPassword || store_ == nullptr) return Ask(window, site, false, std::move(found));
  Behind(LookingUp(store_, KeyOf(site), Prompt::Allowed),
         [self = QPointer(this), over = QPointer(window), site,
          found = std::move(found)](Answer answer) {
           if (self.isNull() || over.isNull()) return;
           if (answer.result != Result::Done) {
             const bool runs = answer.result == Result::Missing || answer.result == Result::Locked;
             return self->Ask(over, site, runs && self->Wanted(), found);
           }
           Site whole = site;
           whole.password = std::move(answer.secret);
           found(std::move(whole), false);
         });
}

void Passwords::Ask(QWidget* window, const Site& site, bool mayKeep, Found found) {
  struct Given {
    std::string password;
    bool keep = false;
  };
  const auto given = std::make_shared<Given>();
  const QString whose = ToText(site.user + "@" + site.host);
  Alerts::Question question{.icon = QMessageBox::Question,
                            .title = tr("Password"),
                            .text = tr("Password for %1").arg(whose),
                            .buttons = {tr("Co&nnect"), tr("&Cancel")},
                            .field = tr("&Password:"),
                            .entered = [given](const auto& text) { given->password = text; }};
  if (mayKeep) {
    question.tick = tr("&Keep it in the keyring");
    question.ticks = true;
    question.ticked = [given](bool ticked) { given->keep = ticked; };
  }
  Alerts::Show(window, question, [site, given, found = std::move(found)](int button) {
    if (button != 0) return found({}, false);
    Site whole = site;
    whole.password = given->password;
    found(std::move(whole), given->keep);
  });
}

void Passwords::Keep(const Site& site, std::function<void(const Text&)> tell) {
  if (!Wanted() || !IsSecret(site)) return;
  const auto work = [store = store_, site] {
    return Answer{store->Save(KeyOf(site), site.password, Prompt::Allowed)};
  };
  Behind(work, [tell = std::move(tell)](const Answer& answer) {
    if (answer.result != Result::Done) tell(Text("The keyring did not take the password."));
  });
}

void Passwords::MoveOver(const Site& site, std::function<void(const Text&)> tell) {
  if (!Wanted() || !IsSecret(site)) return;
  const std::vector<Shortcut> shortcuts = ShortcutStore::ReadForList().shortcuts;
  const auto shortcut = std::ranges::find_if(shortcuts, [&site](const Shortcut& one) {
    return KeyOf(one.site) == KeyOf(site) && one.site.password == site.password;
  });
  if (shortcut == shortcuts.end()) return;
  const auto work = [store = store_, site] {
    return Answer{store->Save(KeyOf(site), site.password, Prompt::Never)};
  };
  Behind(work, [site, name = NameOf(*shortcut), tell = std::move(tell)](const Answer& answer) {
    if (answer.result != Result::Done) return;
    const Text failure = ShortcutStore::TakeOutPassword(site);
    tell(failure.IsEmpty() ? Text("The password of “%1” now stands in the keyring.", name)
                           : Text("The shortcuts could not be saved: %1", failure));
  });
}

void Passwords::KeepAll(std::vector<EditedShortcut> shortcuts, Stored then) {
  bool asked = false;  // the store, for anything
  for (EditedShortcut& edited : shortcuts) {
    Site& site = edited.shortcut.site;
    if (site.asksPassword) site.keptPassword = false;
    if (site.asksPassword || !site.password.empty()) edited.keptAs.reset();
    if (site.asksPassword) site.password.clear();
    if (IsSecret(site)) site.keptPassword = false;
    asked = asked || IsSecret(site) || (site.keptPassword && edited.keptAs.has_value());
  }
  if (!asked || !Wanted()) {
    const bool told = asked && ProcessSettings::Get().useKeyring;
    std::vector<Shortcut> plain;
    plain.reserve(shortcuts.size());
    for (EditedShortcut& edited : shortcuts) plain.push_back(std::move(edited.shortcut));
    return then(std::move(plain), told ? WordFor(Result::NoService) : Text());
  }
  const auto work = [store = store_, shortcuts] {
    Keeper keeper(*store);
    Saved saved;
    for (const EditedShortcut& edited : shortcuts) saved.shortcuts.push_back(keeper.Keep(edited));
    saved.worst = keeper.Worst();
    return std::optional(std::move(saved));
  };
  Behind(work, [shortcuts, then = std::move(then)](std::optional<Saved> saved) {
    if (saved.has_value()) return then(std::move(saved->shortcuts), WordFor(saved->worst));
    std::vector<Shortcut> plain;
    plain.reserve(shortcuts.size());
    for (const EditedShortcut& edited : shortcuts) plain.push_back(edited.shortcut);
    then(std::move(plain), WordFor(Result::Failed));
  });
}

void Passwords::FindAll(std::vector<Shortcut> shortcuts, AllFound then) {
  const auto wanted = [](const Site& site) { return site.keptPassword && site.password.empty(); };
  const auto missing = std::ranges::count_if(
      shortcuts, [&wanted](const Shortcut& each) { return wanted(each.site); });
  if (missing == 0 || store_ == nullptr)
    return then(std::move(shortcuts), static_cast<int>(missing));
  struct All {
    std::vector<Shortcut> shortcuts;
    int missing = 0;
  };
  const auto work = [store = store_, shortcuts, wanted] {
    All all{shortcuts};
    Prompt prompt = Prompt::Allowed;  // the user is asked to unlock it once at most
    for (Shortcut& shortcut : all.shortcuts) {
      if (!wanted(shortcut.site)) continue;
      std::string secret;
      const Result result = store->Lookup(KeyOf(shortcut.site), prompt, secret);
      if (result == Result::Locked) prompt = Prompt::Never;
      if (result == Result::Done) shortcut.site.password = std::move(secret);
      if (result != Result::Done) ++all.missing;
    }
    return std::optional(std::move(all));
  };
  Behind(work, [shortcuts, missing, then = std::move(then)](std::optional<All> all) {
    if (all.has_value()) return then(std::move(all->shortcuts), all->missing);
    then(shortcuts, static_cast<int>(missing));
  });
}

void Passwords::ForgetUnused(const std::vector<Shortcut>& before,
                             const std::vector<Shortcut>& now) {
  if (store_ == nullptr) return;
  std::set<SecretKey> unused = KeptKeys(before);
  for (const SecretKey& key : KeptKeys(now)) unused.erase(key);
  if (unused.empty()) return;
  // Nobody is asked to unlock anything for what is thrown away; nor does a password go that could
  // not be moved because the store stayed locked.
  Background::Start("passwords", [store = store_, unused] {
    for (const SecretKey& key : unused) {
      if (store->Remove(key, Prompt::Never) == Result::Locked) return;
    }
  });
}

void Passwords::AskWhetherKept(std::function<void(bool)> then) {
  if (!Wanted()) return then(false);
  Behind(LookingUp(store_, {}, Prompt::Never), [then = std::move(then)](const Answer& answer) {
    then(answer.result != Result::NoService && answer.result != Result::Failed);
  });
}

}  // namespace corvane
