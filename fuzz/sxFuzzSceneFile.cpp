// Opens arbitrary bytes as a scene file: loads every entry, reads every
// entry as an object reference and as an array reference, walks each
// entry's data with the primitive readers, and imports the root. The only
// acceptable outcomes are error codes and null results.

#include <sx/containers/sxArray.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>
#include <sx/object/sxType.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>
#include <sx/persist/sxLoader.h>

#include <sanitizer/lsan_interface.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace {

const std::string& scratchPath() {
  static const std::string path = [] {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/sxFuzzSceneFile-" +
           std::to_string(getpid()) + ".sx";
  }();
  return path;
}

void walkPrimitives(sxEntry* e) {
  char text[64];
  for (int step = 0; e->getCursor() < e->getDataSize() && step < 4096; ++step) {
    switch (step % 7) {
      case 0:
        e->readInt();
        break;
      case 1:
        e->readShort();
        break;
      case 2:
        e->readDouble();
        break;
      case 3:
        e->readByte();
        break;
      case 4:
        e->readString(text, int(sizeof text));
        break;
      case 5: {
        float f[3];
        e->readFloats(f, 3);
        break;
      }
      default:
        e->readChunk(text, 5);
    }
  }
  e->reset();
}

// Objects made from a file that are still alive once everything is
// released must be cycles: each held only by the others' attributes.
// Anything else is a leak. Cycles are left to the leak checker as in use.
// The objects alive now. The sxBase list is the union of the class lists,
// so a new object may come before old ones in it.
std::unordered_set<sxBase*> liveObjects() {
  sxType* base = sxBase::getClassType();
  std::unordered_set<sxBase*> live;
  for (int i = 0, n = base->getNum(false); i < n; ++i) live.insert(base->get(i, false));
  return live;
}

void checkLeftovers(const std::unordered_set<sxBase*>& before) {
  std::vector<sxBase*> made;
  for (sxBase* obj : liveObjects())
    if (!before.count(obj)) made.push_back(obj);
  std::unordered_map<const sxBase*, int> incoming;
  for (sxBase* obj : made)
    if (const sxTList<sxBase*>* list = obj->getAttribList())
      for (sxBase* a : *list) ++incoming[a];
  // What a cycle member owns (a scene its context, locks and events) is
  // alive with it and held by references no list shows: with a cycle, the
  // count check would blame them, so the leak checker alone judges.
  bool cycles = false;
  for (sxBase* obj : made) cycles |= incoming[obj] > 0 && obj->getRefCount() == incoming[obj];
  for (sxBase* obj : made) {
    if (!cycles && obj->getRefCount() != incoming[obj]) {
      std::fprintf(stderr, "%s %p kept by %d references, %d from cycles\n",
                   obj->getType() ? obj->getType()->getName() : "object", static_cast<void*>(obj),
                   obj->getRefCount(), incoming[obj]);
      __builtin_trap();
    }
    __lsan_ignore_object(obj);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::unordered_set<sxBase*> before = liveObjects();
  const std::string& path = scratchPath();
  if (std::FILE* out = std::fopen(path.c_str(), "wb")) {
    std::fwrite(data, 1, size, out);
    std::fclose(out);
  }
  // What readRef gives is kept the way a caller keeps it: with a reference
  // of its own, taken while the file is open and dropped after it closes.
  std::vector<sxRef<sxBase>> objects;
  std::vector<sxRef<sxArray>> arrays;
  {
    sxFile file;
    if (file.open(path.c_str(), "r")) {
      sxFile scratch;
      sxEntry* ref = scratch.newEntry(scratch.newTag("ref"));
      for (int i = 0; i < file.getNumEntries(); ++i) {
        sxEntry* e = file.getEntry(i);
        if (file.readEntry(e)) walkPrimitives(e);
      }
      for (int i = 0; i < file.getNumEntries(); ++i) {
        ref->reset();
        ref->writeInt(i);
        ref->writeInt(i);
        ref->reset();
        objects.emplace_back(sxBase::readRef(&file, ref));
        arrays.emplace_back(sxArray::readRef(&file, ref));
      }
    }
  }
  objects.clear();
  arrays.clear();
  { sxRef<sxBase> root(sxLoader::importFile(path.c_str())); }
  checkLeftovers(before);
  return 0;
}
