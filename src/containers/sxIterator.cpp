#include <sx/containers/sxIterator.h>
#include <sx/kernel/sxKernel.h>
#include <sx/persist/sxEntry.h>

void sxIterator::resume() {
  paused = 0;
  if (mode == TIME) lastTime = float(sxGetTime());
}

void sxIterator::setMode(MODE m) {
  mode = std::uint8_t(m);
  setNumItems(numItems);
}

void sxIterator::setNumItems(int n) {
  numItems = n;
  if (mode == TIME)
    times.refill(n);
  else
    frames.refill(n);
}

void sxIterator::reset() {
  current = -1;
  step = direction ? -1 : 1;
}

void sxIterator::setTime(float t) {
  times.setTotal(t, numItems);
}
void sxIterator::setItemTime(float t) {
  times.setItem(t, numItems);
}
void sxIterator::setItemTime(int item, float t) {
  times.setOne(item, t);
}
float sxIterator::getItemTime(int item) const {
  return times.perItem.get(item);
}
void sxIterator::setFrameCount(int c) {
  frames.setTotal(c, numItems);
}
void sxIterator::setItemFrameCount(int c) {
  frames.setItem(c, numItems);
}
void sxIterator::setItemFrameCount(int item, int c) {
  frames.setOne(item, c);
}
int sxIterator::getItemFrameCount(int item) const {
  return frames.perItem.get(item);
}

bool sxIterator::advance() {
  current += step;
  switch (cycle) {
    case ONCE:
      if ((step > 0 && current >= numItems) || (step < 0 && current <= 0)) {
        elapsed = 0.0f;
        return false;
      }
      return true;
    case LOOP:
      if (current >= numItems) current = 0;
      if (current < 0) current = numItems - 1;
      return true;
    case SWING:
      if (current >= numItems || current < 0) {
        step = -step;
        current = numItems == 1 ? 0 : current + 2 * step;
      }
      return true;
    default:
      return false;
  }
}

int sxIterator::update() {
  if (paused || numItems == 0) return current;
  if (current < 0) {
    current = direction ? numItems - 1 : 0;
    if (mode == FRAMES) {
      frameCounter = 1;
    } else {
      lastTime = float(sxGetTime());
      elapsed = 0.0f;
    }
    return current;
  }
  // An item of no duration lasts one update, so that a sequence of such
  // items steps instead of spinning for ever.
  if (mode == FRAMES) {
    ++frameCounter;
    while (frameCounter > getItemFrameCount(current)) {
      int frames = getItemFrameCount(current);
      frameCounter -= frames > 0 ? frames : frameCounter;
      if (!advance()) return -1;
      if (frames <= 0) break;
    }
    return current;
  }
  float now = float(sxGetTime());
  elapsed += now - lastTime;
  while (elapsed >= getItemTime(current)) {
    float t = getItemTime(current);
    elapsed -= t > 0.0f ? t : 0.0f;
    if (!advance()) return -1;
    if (t <= 0.0f) break;
  }
  lastTime = now;
  return current;
}

namespace {

// The numbers of one kind of duration (float seconds or int frames) as the
// entry's readers and writers store them.
void put(sxEntry* e, float v) {
  e->writeFloat(v);
}
void put(sxEntry* e, int v) {
  e->writeInt(v);
}
void putRun(sxEntry* e, const float* v, int n) {
  e->writeFloats(v, n);
}
void putRun(sxEntry* e, const int* v, int n) {
  e->writeInts(v, n);
}
void get(sxEntry* e, float& v) {
  v = e->readFloat();
}
void get(sxEntry* e, int& v) {
  v = e->readInt();
}

}  // namespace

// The total, the per-item default, and the per-item values with their
// count.
template <class T>
void sxIterator::writeDurations(sxEntry* entry, const Durations<T>& d) {
  put(entry, d.total);
  put(entry, d.item);
  entry->writeInt(d.perItem.size());
  if (d.perItem.size() > 0) putRun(entry, d.perItem.values(), d.perItem.size());
}

template <class T>
void sxIterator::readDurations(sxEntry* entry, Durations<T>& d) {
  get(entry, d.total);
  get(entry, d.item);
  int n = entry->readInt();
  // A damaged count reads no further than the data go.
  int most = (entry->getDataSize() - entry->getCursor()) / 4;
  if (n > most) n = most;
  if (n <= 0 || !d.perItem.grow(n)) return;
  for (int i = 0; i < n; ++i) {
    T v;
    get(entry, v);
    d.perItem.set(i, v);
  }
}

// Individually set item times are not kept: reading refills the per-item
// values from the totals or the per-item defaults.
void sxIterator::write(sxEntry* entry) const {
  if (!entry) return;
  entry->writeByte(paused);
  entry->writeByte(cycle);
  entry->writeByte(mode);
  entry->writeByte(direction);
  entry->writeInt(current);
  entry->writeInt(step);
  writeDurations(entry, times);
  writeDurations(entry, frames);
  entry->writeInt(numItems);
}

void sxIterator::read(sxEntry* entry) {
  if (!entry) return;
  paused = std::uint8_t(entry->readByte());
  cycle = std::uint8_t(entry->readByte());
  mode = std::uint8_t(entry->readByte());
  direction = std::uint8_t(entry->readByte());
  current = entry->readInt();
  step = entry->readInt();
  readDurations(entry, times);
  readDurations(entry, frames);
  setNumItems(entry->readInt());
}
