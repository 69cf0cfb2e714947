#include "prefs/PREF.h"

#include "prefs/BuiltInPrefs.h"
#include "prefs/ExternalPrefs.h"

namespace corvane {
namespace {

constexpr PrefFunctions kBuiltIn = {
    .version = builtin::Version,
    .init = builtin::Init,
    .shutdown = builtin::Shutdown,
    .loadSet = builtin::LoadSet,
    .saveSet = builtin::SaveSet,
    .reloadSet = builtin::ReloadSet,
    .disposeSet = builtin::DisposeSet,
    .setData = builtin::SetData,
    .deleteItem = builtin::Delete,
    .getData = builtin::GetData,
    .getMessage = builtin::GetMessage,
    .listApplications = builtin::ListApplications,
    .disposeApplicationCookie = builtin::DisposeApplicationCookie,
    .listSets = builtin::ListSets,
    .disposeSetCookie = builtin::DisposeSetCookie,
    .beginTransaction = builtin::BeginTransaction,
    .endTransaction = builtin::EndTransaction,
    .listen = builtin::Listen,
    .listData = builtin::ListData,
    .disposeDataCookie = builtin::DisposeDataCookie,
    .removeApp = builtin::RemoveApp,
    .removeSet = builtin::RemoveSet,
};

// The first call of any function decides for the life of the process.
const PrefFunctions& Chosen() {
  static const PrefFunctions chosen = LoadExternalPrefs().value_or(kBuiltIn);
  return chosen;
}

}  // namespace

PREFStatus PREFInit(const char* name, PREFApp** app) {
  return Chosen().init(name, app);
}

PREFStatus PREFShutdown(PREFApp* app) {
  return Chosen().shutdown(app);
}

PREFStatus PREFLoadSet(PREFApp* app, const char* name, bool perUser, PREFSet** set) {
  return Chosen().loadSet(app, name, perUser, set);
}

PREFStatus PREFReloadSet(PREFSet* set) {
  return Chosen().reloadSet(set);
}

PREFStatus PREFSaveSet(PREFSet* set) {
  return Chosen().saveSet(set);
}

PREFStatus PREFDisposeSet(PREFSet** set) {
  return Chosen().disposeSet(set);
}

PREFStatus PREFRemoveSet(PREFSet* set) {
  return Chosen().removeSet(set);
}

PREFStatus PREFRemoveApp(PREFApp* app) {
  return Chosen().removeApp(app);
}

PREFStatus PREFSetData(PREFSet* set, const char* name, const void* data, std::int32_t size,
                       std::uint32_t type) {
  return Chosen().setData(set, name, data, size, type);
}

PREFStatus PREFGetData(PREFSet* set, const char* name, const void** data, std::int32_t* size,
                       std::uint32_t* type) {
  return Chosen().getData(set, name, data, size, type);
}

PREFStatus PREFDelete(PREFSet* set, const char* name) {
  return Chosen().deleteItem(set, name);
}

Message* PREFGetMessage(PREFSet* set) {
  return Chosen().getMessage(set);
}

PREFStatus PREFListData(PREFSet* set, PREFDataCookie** cookie, char* name, std::int32_t size,
                        std::uint32_t* type) {
  return Chosen().listData(set, cookie, name, size, type);
}

PREFStatus PREFDisposeDataCookie(PREFDataCookie* cookie) {
  return Chosen().disposeDataCookie(cookie);
}

PREFStatus PREFListApplications(bool perUser, PREFApplicationCookie** cookie, char* name,
                                std::int32_t size) {
  return Chosen().listApplications(perUser, cookie, name, size);
}

PREFStatus PREFDisposeApplicationCookie(PREFApplicationCookie* cookie) {
  return Chosen().disposeApplicationCookie(cookie);
}

PREFStatus PREFListSets(PREFApp* app, bool perUser, PREFSetCookie** cookie, char* name,
                        std::int32_t size) {
  return Chosen().listSets(app, perUser, cookie, name, size);
}

PREFStatus PREFDisposeSetCookie(PREFSetCookie* cookie) {
  return Chosen().disposeSetCookie(cookie);
}

PREFStatus PREFBeginTransaction(PREFSet* set, PREFTransaction** transaction) {
  return Chosen().beginTransaction(set, transaction);
}

PREFStatus PREFEndTransaction(PREFTransaction* transaction) {
  return Chosen().endTransaction(transaction);
}

PREFStatus PREFListen(PREFSet* set, PREFListener listener, void* cookie) {
  return Chosen().listen(set, listener, cookie);
}

const char* PREFVersion(std::int32_t* version, std::int32_t* compatible) {
  return Chosen().version(version, compatible);
}

}  // namespace corvane
