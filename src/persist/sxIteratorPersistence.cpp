// The record of an iterator inside its owner's scene file entry.

#include <sx/containers/sxIterator.h>
#include <sx/persist/sxEntry.h>

#include <algorithm>

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
  // The sequencer only ever steps by one item: any other step from a file
  // is damage (and a huge one would overflow the index).
  step = entry->readInt() < 0 ? -1 : 1;
  readDurations(entry, times);
  readDurations(entry, frames);
  // A sound record holds a value per item in the mode's array: a larger
  // count is damage, and would size the arrays by a word of the file.
  const int items = entry->readInt();
  const int stored = std::max(times.perItem.size(), frames.perItem.size());
  setNumItems(std::clamp(items, 0, stored));
  // A current item out of the range is "not started".
  if (current < -1 || current >= numItems) current = -1;
}
