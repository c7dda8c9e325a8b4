#include <sx/kernel/sxKernel.h>
#include <sx/nodes/sxAction.h>
#include <sx/nodes/sxActionNode.h>
#include <sx/nodes/sxEvent.h>
#include <sx/persist/sxEntry.h>
#include <sx/threads/sxLock.h>

#include "nodes/sxEventAction.h"
#include "object/sxReferenced.h"
#include "platform/sxPlatform.h"
#include "threads/sxLockScope.h"

SX_DEFINE_CLASS(sxEvent)

// The platform event that waiting threads sleep on.
struct sxEvent::Signal : sxPlatform::PulseEvent {};

namespace {
// Events triggered inside one another on this thread.
thread_local int chainDepth = 0;

template <class T>
void referenceAll(sxTList<T*>& to, const sxTList<T*>& from) {
  for (T* item : from)
    if (to.add(item) >= 0) item->ref();
}
}  // namespace

sxLock* sxEvent::newLock() {
  return new sxLock;
}

sxEvent::Signal* sxEvent::newSignal() {
  return sxNew<Signal>();
}

sxEvent::sxEvent() : sxBase(), lock(newLock()) {}

sxEvent::sxEvent(const sxEvent& source) : sxBase(source), lock(newLock()) {
  sxiLockScope guard(source.lock.get());
  enabled = source.enabled;
  referenceAll(actions, source.actions);
  referenceAll(actionNodes, source.actionNodes);
}

sxEvent::~sxEvent() {
  sxiReleaseAll(actions);
  sxiReleaseAll(actionNodes);
  sxDelete(signal);
  signal = nullptr;
}

sxEvent* sxEvent::findOrCreate(const char* name) {
  if (!name || !*name) return nullptr;
  // The new event is made before the list is unlocked, so that two threads
  // asking for the same name at once share one event.
  sxType* type = getClassType();
  if (type) type->lockInstanceList();
  sxEvent* event = find(name);
  if (!event) {
    event = new sxEvent;
    if (event) event->setName(name);
  }
  if (event) event->ref();
  if (type) type->unlockInstanceList();
  return event;
}

void sxEvent::trigger(sxEvent* event, sxBase* object) {
  if (event) event->trigger(object);
}

void sxEvent::trigger(sxBase* object) {
  sxiLockScope guard(lock.get());
  if (signal) signal->pulse();
  if (!enabled || chainDepth >= maxChainDepth) return;
  time = sxGetTime();
  lastObject = object;
  ++chainDepth;
  // Indices are re-checked on every step: an action may change the lists
  // (the lock is re-entrant), and each runs referenced, so that one that
  // removes itself lives until it returns.
  for (int i = 0; i < actions.getNum(); ++i) sxRef<sxAction>(actions[i])->apply(object, this);
  for (int i = 0; i < actionNodes.getNum(); ++i)
    sxRef<sxActionNode>(actionNodes[i])->eventTriggered(object, this);
  --chainDepth;
}

void sxEvent::enable(bool enable) {
  sxiLockScope guard(lock.get());
  enabled = enable;
}

bool sxEvent::waitForTrigger(int timeoutMs) {
  return signal && signal->wait(timeoutMs);
}

bool sxEvent::waitForTrigger() {
  return waitForTrigger(-1);
}

bool sxEvent::apply(sxBase* object, sxEvent*) {
  trigger(object);
  return true;
}

sxEntry* sxEvent::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxBase::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (e) e->writeInt(isEnabled() ? 1 : 0);
  return created;
}

sxEntry* sxEvent::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxBase::read(file, entry);
  if (e) enable(e->readInt() != 0);
  return e;
}

bool sxEvent::addAction(sxAction* action) {
  return sxiAddReferenced<sxiLockScope>(actions, action, lock.get());
}

bool sxEvent::addAction(sxActionNode* node) {
  return sxiAddReferenced<sxiLockScope>(actionNodes, node, lock.get());
}

bool sxEvent::addAction(sxEvent* event) {
  if (!event || event == this) return false;
  sxAction* link = new sxiEventAction(event);
  if (!link) return false;
  if (addAction(link)) return true;
  delete link;  // never shared
  return false;
}

bool sxEvent::removeAction(sxAction* action) {
  return sxiRemoveReferenced<sxiLockScope>(actions, action, lock.get());
}

bool sxEvent::removeAction(sxActionNode* node) {
  return sxiRemoveReferenced<sxiLockScope>(actionNodes, node, lock.get());
}

int sxEvent::findChained(const sxEvent* event) const {
  for (int i = actions.getNum() - 1; i >= 0; --i) {
    auto* link = dynamic_cast<sxiEventAction*>(actions[i]);
    if (link && link->getEvent() == event) return i;
  }
  return -1;
}

bool sxEvent::removeAction(sxEvent* event) {
  if (!event) return false;
  sxAction* link;
  {
    sxiLockScope guard(lock.get());
    const int i = findChained(event);
    if (i < 0) return false;
    link = actions[i];
    actions.removeIndex(i);
  }
  link->unRef();
  return true;
}

namespace {
template <class T>
T* entryOrNull(const sxTList<T*>& list, int i) {
  return list.indexInRange(i) ? list[i] : nullptr;
}
}  // namespace

bool sxEvent::isEnabled() const {
  return sxiLocked(lock.get(), [this] { return enabled; });
}

double sxEvent::getTime() const {
  return sxiLocked(lock.get(), [this] { return time; });
}

sxBase* sxEvent::getLastObject() const {
  return sxiLocked(lock.get(), [this] { return lastObject; });
}

int sxEvent::getNumActions() const {
  return sxiLocked(lock.get(), [this] { return actions.getNum(); });
}

sxAction* sxEvent::getAction(int i) const {
  return sxiLocked(lock.get(), [this, i] { return entryOrNull(actions, i); });
}

int sxEvent::getNumActionNodes() const {
  return sxiLocked(lock.get(), [this] { return actionNodes.getNum(); });
}

sxActionNode* sxEvent::getActionNode(int i) const {
  return sxiLocked(lock.get(), [this, i] { return entryOrNull(actionNodes, i); });
}
