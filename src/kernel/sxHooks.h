#pragma once

class sxBase;

// The calls that the lower layers (kernel services, object model,
// containers) make into the layers above them, which they cannot include.
// The start-up code installs every hook before it builds anything else; a
// hook that is still null behaves as described beside it, which is what
// single-threaded use before start-up needs.
namespace sxiHooks {

using ObjectMaker = sxBase* (*)();
using ObjectAction = void (*)(sxBase* obj);
using ObjectTest = bool (*)(sxBase* obj);
using FileImporter = sxBase* (*)(const char* name);

// Locks (threads layer). The kernel locks and every queue's own lock are
// library lock objects, handled here as plain objects.
// A new lock (count 0); null: the caller goes without one.
extern ObjectMaker makeLock;
inline sxBase* newLock() {
  return makeLock ? makeLock() : nullptr;
}
// Null: locking does nothing.
extern ObjectAction acquireLock;
extern ObjectAction releaseLock;

// Deferred deletion (threads layer).
// True when obj's deletion has been handed to the downstream threads.
// Null: never (no threads, so the object dies at once).
extern ObjectTest deferDeletion;
// True when the thread that is using obj destroys it itself later.
// Null: never.
extern ObjectTest destroysItselfLater;
// True while downstream threads are linked, so that a released object may
// still be in some queue. Null: never.
using Query = bool (*)();
extern Query pipelineRunning;

// Whole-file import (persistence layer), for the import() of every class.
// Null: nothing can be imported.
extern FileImporter importFile;

}  // namespace sxiHooks
