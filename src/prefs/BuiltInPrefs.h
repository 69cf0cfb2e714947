#pragma once

#include "prefs/PREF.h"

/// The system's own implementation of the interface, function by function.
namespace corvane::builtin {

// PrefStore.cpp
decltype(PREFVersion) Version;
decltype(PREFInit) Init;
decltype(PREFShutdown) Shutdown;
decltype(PREFLoadSet) LoadSet;
decltype(PREFReloadSet) ReloadSet;
decltype(PREFSaveSet) SaveSet;
decltype(PREFDisposeSet) DisposeSet;
decltype(PREFRemoveSet) RemoveSet;
decltype(PREFRemoveApp) RemoveApp;

// PrefItems.cpp
decltype(PREFSetData) SetData;
decltype(PREFGetData) GetData;
decltype(PREFDelete) Delete;
decltype(PREFGetMessage) GetMessage;
decltype(PREFBeginTransaction) BeginTransaction;
decltype(PREFEndTransaction) EndTransaction;
decltype(PREFListen) Listen;

// PrefLists.cpp
decltype(PREFListData) ListData;
decltype(PREFDisposeDataCookie) DisposeDataCookie;
decltype(PREFListApplications) ListApplications;
decltype(PREFDisposeApplicationCookie) DisposeApplicationCookie;
decltype(PREFListSets) ListSets;
decltype(PREFDisposeSetCookie) DisposeSetCookie;

}  // namespace corvane::builtin
