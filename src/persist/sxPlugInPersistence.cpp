// The plug-in list of a scene file: the modules whose classes the file's
// objects need, loaded again when the file is read.

#include <sx/kernel/sxKernel.h>
#include <sx/object/sxMemory.h>
#include <sx/object/sxPlugIn.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <cstring>

#include "kernel/sxKernelLocks.h"

namespace {

constexpr const char* plugInTag = "sxPlugIns";
constexpr int numStrings = 4;

// A string as its length with the NUL and the text, or a single 0.
void writeCountedString(sxEntry* entry, const char* s) {
  if (!s) {
    entry->writeInt(0);
    return;
  }
  entry->writeInt(int(std::strlen(s)) + 1);
  entry->writeString(s);
}

// Reads a string written by writeCountedString into a new heap string
// (null for none). False when the length reaches past the entry.
bool readCountedString(sxEntry* entry, char*& out) {
  out = nullptr;
  int length = entry->readInt();
  if (length <= 0) return true;
  if (length > entry->getDataSize() - entry->getCursor()) return false;
  out = static_cast<char*>(sxMemory::malloc(std::size_t(length) + 1));
  if (!out) return false;
  entry->readString(out, length);
  out[length] = 0;
  return true;
}

}  // namespace

void sxPlugIn::writePlugIn(sxPlugIn* p, sxEntry* entry) {
  writeCountedString(entry, p->getCompany());
  writeCountedString(entry, p->getName());
  writeCountedString(entry, p->getDate());
  writeCountedString(entry, p->getModuleName());
  entry->writeInt(p->getMajor());
  entry->writeInt(p->getMinor());
  entry->writeInt(p->getBuild());
}

char* sxPlugIn::readPlugIn(sxEntry* entry) {
  // company, name, date, module name
  char* strings[numStrings] = {};
  bool ok = true;
  for (int i = 0; ok && i < numStrings; ++i) ok = readCountedString(entry, strings[i]);
  for (int i = 0; i < 3; ++i) entry->readInt();  // major, minor, build
  for (int i = 0; i < numStrings - 1; ++i) sxMemory::free(strings[i]);
  if (!ok) {
    sxMemory::free(strings[numStrings - 1]);
    return nullptr;
  }
  return strings[numStrings - 1];
}

void sxPlugIn::savePlugIns(sxFile* file) {
  if (!file) return;
  int tag = file->findTag(plugInTag);
  sxEntry* entry = tag < 0 ? file->newEntry(file->newTag(plugInTag)) : file->findEntry(tag);
  if (!entry) return;
  entry->setVersion(sxGetVersion());
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  int count = 0;
  for (int i = 0; i < getNum(); ++i)
    if (get(i)->isSaveWithFileEnabled()) ++count;
  entry->writeInt(count);
  for (int i = 0; i < getNum(); ++i)
    if (get(i)->isSaveWithFileEnabled()) writePlugIn(get(i), entry);
}

void sxPlugIn::loadPlugIns(sxFile* file) {
  if (!file || !isDynamicPlugInsEnabled()) return;
  sxEntry* entry = file->findEntry(plugInTag);
  if (!entry || !file->readEntry(entry)) return;
  // Files of releases before 1.2.0 need the classes of the former core.
  if (entry->getVersion() < sxMakeVersion(1, 2, 0)) load("sxAltCore.dll");
  int count = entry->readInt();
  for (int i = 0; i < count; ++i) {
    int at = entry->getCursor();
    char* moduleName = readPlugIn(entry);
    if (!moduleName && entry->getCursor() == at) break;
    if (!moduleName) continue;
    // Only the module's name counts: a file must not make the library
    // load a library from a place of its choosing.
    const char* base = moduleName;
    for (const char* p = moduleName; *p; ++p)
      if (*p == '/' || *p == '\\') base = p + 1;
    if (*base) load(base);
    sxMemory::free(moduleName);
  }
}
