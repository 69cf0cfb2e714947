// Calls every function, with nothing, and prints what they answer.
#include <iostream>

#include "prefs/PREF.h"

using namespace corvane;

int main() {
  const auto* const version = PREFVersion(nullptr, nullptr);
  std::cout << (version == reinterpret_cast<const char*>(1) ? "1" : version);
  const auto print = [](auto... answers) { ((std::cout << ' ' << answers), ...); };
  print(PREFInit({}, {}), PREFShutdown({}), PREFLoadSet({}, {}, {}, {}), PREFSaveSet({}),
        PREFReloadSet({}), PREFDisposeSet({}), PREFSetData({}, {}, {}, {}, {}), PREFDelete({}, {}),
        PREFGetData({}, {}, {}, {}, {}), reinterpret_cast<std::intptr_t>(PREFGetMessage({})),
        PREFListApplications({}, {}, {}, {}), PREFDisposeApplicationCookie({}),
        PREFListSets({}, {}, {}, {}, {}), PREFDisposeSetCookie({}), PREFBeginTransaction({}, {}),
        PREFEndTransaction({}), PREFListen({}, {}, {}), PREFListData({}, {}, {}, {}, {}),
        PREFDisposeDataCookie({}), PREFRemoveApp({}), PREFRemoveSet({}));
}
