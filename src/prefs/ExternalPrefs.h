#pragma once

#include <optional>

#include "prefs/PREF.h"

namespace corvane {

/// One implementation of the interface.
struct PrefFunctions {
  decltype(&PREFVersion) version;
  decltype(&PREFInit) init;
  decltype(&PREFShutdown) shutdown;
  decltype(&PREFLoadSet) loadSet;
  decltype(&PREFSaveSet) saveSet;
  decltype(&PREFReloadSet) reloadSet;
  decltype(&PREFDisposeSet) disposeSet;
  decltype(&PREFSetData) setData;
  decltype(&PREFDelete) deleteItem;
  decltype(&PREFGetData) getData;
  decltype(&PREFGetMessage) getMessage;
  decltype(&PREFListApplications) listApplications;
  decltype(&PREFDisposeApplicationCookie) disposeApplicationCookie;
  decltype(&PREFListSets) listSets;
  decltype(&PREFDisposeSetCookie) disposeSetCookie;
  decltype(&PREFBeginTransaction) beginTransaction;
  decltype(&PREFEndTransaction) endTransaction;
  decltype(&PREFListen) listen;
  decltype(&PREFListData) listData;
  decltype(&PREFDisposeDataCookie) disposeDataCookie;
  decltype(&PREFRemoveApp) removeApp;
  decltype(&PREFRemoveSet) removeSet;
};

/// The installed library "libprefs.so": by its bare name, else from the directories in the
/// environment variable LIBRARY_PATH, where "%A" in front stands for the program's own directory.
/// When the first one found lacks a function, that name is printed and there is none.
[[nodiscard]] std::optional<PrefFunctions> LoadExternalPrefs();

}  // namespace corvane
