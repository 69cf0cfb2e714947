#pragma once

#include <cstddef>
#include <cstdint>

#include "kit/Message.h"

/// The preference store: named sets of typed items, each set one file.
///
/// An application registers under its name, loads sets, reads and writes their items and saves
/// them. Sets may be shared by threads and by processes; every call may come from any thread. When
/// a library "libprefs.so" is installed that has the whole interface, all calls go to it.
///
/// Functions return 0 or a negative status: one of the codes below, or a negated errno number. A
/// file that another process keeps locked is waited for about a second; then the call returns
/// -EBUSY.
namespace corvane {

using PREFStatus = std::int32_t;

/// Codes of the store itself.
inline constexpr PREFStatus kPrefNotFound = static_cast<PREFStatus>(0xA0B00000);  ///< or: no more
inline constexpr PREFStatus kPrefPathTooLong = static_cast<PREFStatus>(0xA0B00001);
inline constexpr PREFStatus kPrefNoLock = static_cast<PREFStatus>(0xA0B00002);
inline constexpr PREFStatus kPrefInUse = static_cast<PREFStatus>(0xA0B00005);

/// Records of the store; handles to them are borrowed and end with the call that gives them back.
struct PREFApp;
struct PREFSet;
struct PREFTransaction;
struct PREFDataCookie;
struct PREFApplicationCookie;
struct PREFSetCookie;

/// Called on the listener's own thread when another process, or this one, has saved the set.
using PREFListener = void (*)(PREFSet* set, void* cookie);

/// Registers `name` (no "/") or finds it. The handle is counted: one PREFShutdown for each
/// PREFInit.
PREFStatus PREFInit(const char* name, PREFApp** app);
/// Gives a handle back; the last one ends the application's sets, unsaved.
PREFStatus PREFShutdown(PREFApp* app);

/// Loads the set `name`, which may contain "/", or finds it loaded. The file and the directories
/// above it are made when missing. `*set` is null after a failure; a damaged file is left as it is.
PREFStatus PREFLoadSet(PREFApp* app, const char* name, bool perUser, PREFSet** set);
/// Reads the file again; the items stay as they were when that fails.
PREFStatus PREFReloadSet(PREFSet* set);
/// Replaces the file as a whole: afterwards, and after a crash, it is the old one or the new one.
PREFStatus PREFSaveSet(PREFSet* set);
/// Gives a handle back; the last one drops the set without saving and clears `*set`. A listener's
/// call that is under way is waited for, unless a listener itself drops the set.
PREFStatus PREFDisposeSet(PREFSet** set);
/// Drops a set that nobody else holds, with its file.
PREFStatus PREFRemoveSet(PREFSet* set);
/// Drops an application that nobody else holds, with all its sets and its directory.
PREFStatus PREFRemoveApp(PREFApp* app);

/// Replaces an item, whatever its type was. The bytes are copied.
PREFStatus PREFSetData(PREFSet* set, const char* name, const void* data, std::int32_t size,
                       std::uint32_t type);
/// Lends an item's bytes until the item changes.
PREFStatus PREFGetData(PREFSet* set, const char* name, const void** data, std::int32_t* size,
                       std::uint32_t* type);
/// Removes an item.
PREFStatus PREFDelete(PREFSet* set, const char* name);
/// Lends the set's message itself; null when there is none.
Message* PREFGetMessage(PREFSet* set);

/// Each call of a listing returns one name, cut to `size` bytes with its NUL, and kPrefNotFound at
/// the end. A cookie starts as null, and goes back to its dispose function.
PREFStatus PREFListData(PREFSet* set, PREFDataCookie** cookie, char* name, std::int32_t size,
                        std::uint32_t* type);
PREFStatus PREFDisposeDataCookie(PREFDataCookie* cookie);
PREFStatus PREFListApplications(bool perUser, PREFApplicationCookie** cookie, char* name,
                                std::int32_t size);
PREFStatus PREFDisposeApplicationCookie(PREFApplicationCookie* cookie);
PREFStatus PREFListSets(PREFApp* app, bool perUser, PREFSetCookie** cookie, char* name,
                        std::int32_t size);
PREFStatus PREFDisposeSetCookie(PREFSetCookie* cookie);

/// Locks the set's file against other processes until PREFEndTransaction. Within one transaction
/// the process may load, save and reload; a second begin on the same set adds a reference.
PREFStatus PREFBeginTransaction(PREFSet* set, PREFTransaction** transaction);
PREFStatus PREFEndTransaction(PREFTransaction* transaction);

/// Calls `listener`, which may use every function, whenever the set's file changes, until the set
/// is dropped; a second call takes the first one's place. How often it looks is set by the
/// environment variable POLL_INTERVAL: below 4,000 in seconds, below 500,000 in milliseconds, else
/// in microseconds.
PREFStatus PREFListen(PREFSet* set, PREFListener listener, void* cookie);

/// The version as text and as two numbers.
const char* PREFVersion(std::int32_t* version, std::int32_t* compatible);

}  // namespace corvane
