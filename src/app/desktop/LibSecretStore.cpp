#include "app/desktop/LibSecretStore.h"

#include <libsecret/secret.h>

#include <memory>
#include <optional>
#include <utility>

#include "kit/Background.h"
#include "kit/Mutex.h"
#include "util/Percent.h"

namespace corvane {
namespace {

using Result = SecretStore::Result;
using Prompt = SecretStore::Prompt;

const SecretSchema kSchema = {"arpa.home.corvane.Password",
                              SECRET_SCHEMA_NONE,
                              {{"protocol", SECRET_SCHEMA_ATTRIBUTE_STRING},
                               {"host", SECRET_SCHEMA_ATTRIBUTE_STRING},
                               {"port", SECRET_SCHEMA_ATTRIBUTE_INTEGER},
                               {"user", SECRET_SCHEMA_ATTRIBUTE_STRING}},
                              0,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr};

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
struct FreeItems {
  void operator()(GList* items) const { g_list_free_full(items, g_object_unref); }
};
struct FreeValue {
  void operator()(SecretValue* value) const { secret_value_unref(value); }
};
struct FreeTable {
  void operator()(GHashTable* table) const { g_hash_table_unref(table); }
};
struct FreeError {
  void operator()(GError* error) const { g_error_free(error); }
};
using Service = std::unique_ptr<SecretService, Unref>;
using Items = std::unique_ptr<GList, FreeItems>;
using Value = std::unique_ptr<SecretValue, FreeValue>;
using Attributes = std::unique_ptr<GHashTable, FreeTable>;
using Error = std::unique_ptr<GError, FreeError>;

// The bus takes UTF-8 only, and names are any bytes.
std::string OnTheBus(const std::string& name) {
  return PercentEncoded(name, " !\"#$&'()*+,/:;<=>?@[\\]^`{|}");
}

Attributes AttributesOf(const SecretKey& key) {
  return Attributes(secret_attributes_build(
      &kSchema, "protocol", "ftp", "host", OnTheBus(key.host).c_str(), "port",
      static_cast<int>(key.port), "user", OnTheBus(key.user).c_str(), nullptr));
}

// Without a bus there is no service either.
Result ResultOf(const Error& error) {
  if (error == nullptr) return Result::Failed;
  if (g_error_matches(error.get(), SECRET_ERROR, SECRET_ERROR_IS_LOCKED) != 0) {
    return Result::Locked;
  }
  for (const int code : {G_DBUS_ERROR_SERVICE_UNKNOWN, G_DBUS_ERROR_NAME_HAS_NO_OWNER,
                         G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND, G_DBUS_ERROR_SPAWN_EXEC_FAILED,
                         G_DBUS_ERROR_SPAWN_CHILD_EXITED, G_DBUS_ERROR_NO_SERVER}) {
    if (g_error_matches(error.get(), G_DBUS_ERROR, code) != 0) return Result::NoService;
  }
  return error->domain == G_IO_ERROR ? Result::NoService : Result::Failed;
}

/// One call to the service, on its thread.
class Call {
 public:
  Call(const SecretKey& key, Prompt prompt)
      : prompt_(prompt), key_(key), attributes_(AttributesOf(key)) {
    GError* error = nullptr;
    service_.reset(secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, nullptr, &error));
    error_.reset(error);
    if (service_ == nullptr) return;
    // The end of the session's bus is not the end of the program.
    g_dbus_connection_set_exit_on_close(g_dbus_proxy_get_connection(G_DBUS_PROXY(service_.get())),
                                        FALSE);
  }

  Result Lookup(std::string& secret) {
    const Items items = Find(SECRET_SEARCH_NONE);
    if (error_ != nullptr) return ResultOf(error_);
    if (items == nullptr) return Result::Missing;
    if (const Result result = Unlock(items); result != Result::Done) return result;
    auto* const item = static_cast<SecretItem*>(items->data);
    GError* error = nullptr;
    const bool loaded = secret_item_load_secret_sync(item, nullptr, &error) != 0;
    error_.reset(error);
    if (!loaded) return ResultOf(error_);
    const Value value(secret_item_get_secret(item));
    if (value == nullptr) return Result::Locked;
    gsize size = 0;
    const char* const bytes = secret_value_get(value.get(), &size);
    secret.assign(bytes, size);
    return Result::Done;
  }

  // The service by itself would ask for what is locked.
  Result Save(const std::string& secret) {
    if (error_ != nullptr) return ResultOf(error_);
    if (prompt_ == Prompt::Never && !IsOpen()) return Result::Locked;
    const Value value(
        secret_value_new(secret.data(), static_cast<gssize>(secret.size()), "text/plain"));
    const std::string label = "Corvane: " + OnTheBus(key_.user) + "@" + OnTheBus(key_.host);
    GError* error = nullptr;
    const bool stored = secret_service_store_sync(service_.get(), &kSchema, attributes_.get(),
                                                  SECRET_COLLECTION_DEFAULT, label.c_str(),
                                                  value.get(), nullptr, &error) != 0;
    error_.reset(error);
    if (stored) return Result::Done;
    return error_ == nullptr || !IsOpen() ? Result::Locked : ResultOf(error_);
  }

  // What is locked is said to be removed, and stays.
  Result Remove() {
    const Items items = Find(SECRET_SEARCH_ALL);
    if (error_ != nullptr) return ResultOf(error_);
    if (items == nullptr) return Result::Missing;
    if (const Result result = Unlock(items); result != Result::Done) return result;
    GError* error = nullptr;
    secret_service_clear_sync(service_.get(), &kSchema, attributes_.get(), nullptr, &error);
    error_.reset(error);
    if (error_ != nullptr) return ResultOf(error_);
    const Items left = Find(SECRET_SEARCH_ALL);
    if (error_ != nullptr) return ResultOf(error_);
    return left == nullptr ? Result::Done : Result::Locked;
  }

 private:
  Items Find(SecretSearchFlags flags) {
    if (error_ != nullptr) return {};
    GError* error = nullptr;
    Items items(secret_service_search_sync(service_.get(), &kSchema, attributes_.get(), flags,
                                           nullptr, &error));
    error_.reset(error);
    return items;
  }

  Result Unlock(const Items& items) {
    bool locked = false;
    guint count = 0;
    for (GList* one = items.get(); one != nullptr; one = one->next, ++count) {
      locked = locked || secret_item_get_locked(static_cast<SecretItem*>(one->data)) != 0;
    }
    if (!locked) return Result::Done;
    if (prompt_ == Prompt::Never) return Result::Locked;
    GList* opened = nullptr;
    GError* error = nullptr;
    secret_service_unlock_sync(service_.get(), items.get(), nullptr, &opened, &error);
    error_.reset(error);
    const Items unlocked(opened);
    if (error_ != nullptr) return ResultOf(error_);
    return g_list_length(opened) == count ? Result::Done : Result::Locked;
  }

  /// Whether there is a collection to save into that is not locked.
  bool IsOpen() {
    const std::unique_ptr<SecretCollection, Unref> collection(secret_collection_for_alias_sync(
        service_.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, nullptr, nullptr));
    return collection != nullptr && secret_collection_get_locked(collection.get()) == 0;
  }

  const Prompt prompt_;
  const SecretKey key_;
  const Attributes attributes_;
  Service service_;
  Error error_;
};

// A service that was started anew knows nothing of the session that was opened with the old one.
template <typename Ask>
Result AskTwice(const SecretKey& key, Prompt prompt, const Ask& ask) {
  Result result = Result::Failed;
  for (int tries = 0; tries < 2 && result == Result::Failed; ++tries) {
    Call call(key, prompt);
    result = ask(call);
    if (result == Result::Failed || result == Result::NoService) secret_service_disconnect();
  }
  return result;
}

}  // namespace

LibSecretStore::Answer LibSecretStore::InTime(Prompt prompt, std::function<Answer()> ask) const {
  struct Pending {
    Mutex lock;
    Condition changed;
    std::optional<Answer> answer GUARDED_BY(lock);
  };
  const auto pending = std::make_shared<Pending>();
  const bool prompted = prompt == Prompt::Allowed;
  const auto until =
      std::chrono::steady_clock::now() + (prompted ? deadlines_.prompted : deadlines_.usual);
  const bool started = Background::Start("secrets", [pending, ask = std::move(ask)] {
    Answer answer = ask();
    const MutexLock hold(pending->lock);
    pending->answer = std::move(answer);
    pending->changed.NotifyAll();
  });
  if (!started) return {};
  const MutexLock hold(pending->lock);
  while (!pending->answer.has_value()) {
    if (pending->changed.WaitUntil(pending->lock, until) || pending->answer.has_value()) continue;
    secret_service_disconnect();
    return {prompted ? Result::Locked : Result::Failed, {}};
  }
  return *pending->answer;
}

Result LibSecretStore::Lookup(const SecretKey& key, Prompt prompt, std::string& secret) {
  Answer answer = InTime(prompt, [key, prompt] {
    Answer found;
    found.result = AskTwice(key, prompt, [&](Call& call) { return call.Lookup(found.secret); });
    return found;
  });
  if (answer.result == Result::Done) secret = std::move(answer.secret);
  return answer.result;
}

Result LibSecretStore::Save(const SecretKey& key, const std::string& secret, Prompt prompt) {
  return InTime(prompt,
                [key, secret, prompt]() -> Answer {
                  return {AskTwice(key, prompt, [&](Call& call) { return call.Save(secret); }), {}};
                })
      .result;
}

Result LibSecretStore::Remove(const SecretKey& key, Prompt prompt) {
  return InTime(prompt,
                [key, prompt]() -> Answer {
                  return {AskTwice(key, prompt, [](Call& call) { return call.Remove(); }), {}};
                })
      .result;
}

}  // namespace corvane
