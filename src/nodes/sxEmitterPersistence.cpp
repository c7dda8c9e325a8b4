#include <sx/nodes/sxEmitter.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <cstring>
#include <string>

namespace {

// The wave name as its length with the NUL (0 for none) and the text.
void writeWave(sxEntry* e, const char* name) {
  e->writeInt(name ? int(std::strlen(name)) + 1 : 0);
  if (name) e->writeString(name);
}

// False when the length reaches past the entry (a damaged or hostile
// record): nothing is allocated for it.
bool readWave(sxEntry* e, std::string& name, bool& present) {
  const int length = e->readInt();
  present = length > 0;
  if (!present) return true;
  if (length > e->getDataSize() - e->getCursor()) return false;
  name.assign(std::size_t(length), '\0');
  e->readString(name.data(), length);
  name.resize(std::strlen(name.c_str()));
  return true;
}

}  // namespace

sxEntry* sxEmitter::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxGroup::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (!e) return created;
  e->writeInt(int(emitterFlags));
  e->writeFloats(&position.x, 3);
  writeWave(e, getWaveName());
  const float values[] = {minDistance, maxDistance, audioLevel, priority, pitch, pan};
  e->writeFloats(values, 6);
  e->writeInt(looping ? 1 : 0);
  return created;
}

// The record's flags are taken as they are, except that the emitter bits
// follow the playing state; the listener's data starts empty.
sxEntry* sxEmitter::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxGroup::read(file, entry);
  if (!e) return nullptr;
  emitterFlags = unsigned(e->readInt());
  e->readFloats(&position.x, 3);
  std::string name;
  bool present = false;
  if (!readWave(e, name, present)) return nullptr;
  if (present)
    waveName.emplace(std::move(name));
  else
    waveName.reset();
  float values[6];
  e->readFloats(values, 6);
  minDistance = values[0];
  maxDistance = values[1];
  setAudioLevel(values[2]);
  priority = values[3];
  pitch = values[4];
  pan = values[5];
  looping = e->readInt() != 0;
  emitterData = nullptr;
  addTravFlags(TRAV_FLAG_EMITTER);
  if (isPlaying())
    addTravFlags(unsigned(TRAV_FLAG_PLAYING) | TRAV_FLAG_UPDATE);
  else
    removeTravFlags(TRAV_FLAG_PLAYING);
  return e;
}
