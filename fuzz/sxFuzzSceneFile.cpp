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
#include "sxFuzzLeftovers.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::unordered_set<sxBase*> before = sxfuzz::liveObjects();
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
  sxfuzz::checkLeftovers(before);
  return 0;
}
