#include "support/sxReferenceScene.h"

#include <sx/sxCore.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "support/sxCycles.h"
#include "support/sxReferenceCheck.h"
#include "support/sxTestHolder.h"

namespace sxReference {

namespace {

constexpr int numArrayElements = 5;
constexpr int rleRun = 300;
constexpr int rleTail = 10;
constexpr const char* chunkText = "chunk\x01\x02\x03";

// The byte of element i of an array of type t at byte position k.
unsigned char arrayByte(int t, int i, int k) {
  return static_cast<unsigned char>(17 * t + 5 * i + k + 1);
}
int arrayInt(int t, int i, int k) {
  return (t + 1) * 1000003 * (i + 1) + k * 7 - 0x12345;
}
float arrayFloat(int t, int i, int k) {
  return float(t) * 1.5f + float(i) * -0.25f + float(k) * 1024.125f;
}
double arrayDouble(int i) {
  return 1.0e100 / double(i + 3) - 3.25;
}

// Fills element i of the array with its reference value.
void setElement(sxArray* a, int i) {
  int t = a->getType();
  unsigned char* p = static_cast<unsigned char*>(a->getData()) + i * a->getElemSize();
  switch (a->getType()) {
    case sxArray::TYPE_USHORT: {
      auto v = static_cast<unsigned short>(arrayInt(t, i, 0));
      std::memcpy(p, &v, 2);
      break;
    }
    case sxArray::TYPE_UBYTEVEC3:
    case sxArray::TYPE_UBYTEVEC4:
      for (int k = 0; k < a->getElemSize(); ++k) p[k] = arrayByte(t, i, k);
      break;
    case sxArray::TYPE_INT: {
      int v = arrayInt(t, i, 0);
      std::memcpy(p, &v, 4);
      break;
    }
    case sxArray::TYPE_DOUBLE: {
      double v = arrayDouble(i);
      std::memcpy(p, &v, 8);
      break;
    }
    default:
      for (int k = 0; k < a->getElemSize() / 4; ++k) {
        float v = arrayFloat(t, i, k);
        std::memcpy(p + 4 * k, &v, 4);
      }
  }
}

bool elementMatches(const sxArray* a, int i) {
  sxArray expected(i + 1, a->getType());
  setElement(&expected, i);
  std::size_t at = std::size_t(i) * std::size_t(a->getElemSize());
  return std::memcmp(static_cast<const unsigned char*>(expected.getData()) + at,
                     static_cast<const unsigned char*>(a->getData()) + at,
                     std::size_t(a->getElemSize())) == 0;
}

sxBase* named(sxBase* obj, const char* name) {
  obj->setName(name);
  return obj;
}

}  // namespace

bool isBigEndian() {
  std::uint32_t one = 1;
  unsigned char first;
  std::memcpy(&first, &one, 1);
  return first == 0;
}

bool writePrimitiveFile(const char* path) {
  sxFile file;
  if (!file.create(path)) return false;
  sxEntry* e = file.newEntry(file.newTag("sxPrimitives"));
  e->writeByte(0xA5);
  e->writeShort(-12345);
  e->writeInt(-123456789);
  e->writeBool(true);
  e->writeFloat(3.14159274f);
  e->writeDouble(-2.718281828459045);
  const int ints[3] = {1, -2, 0x7FFFFFFF};
  e->writeInts(ints, 3);
  const float floats[2] = {0.5f, -1.0e30f};
  e->writeFloats(floats, 2);
  e->writeInt(int(std::strlen("Solmax")) + 1);
  e->writeString("Solmax");
  e->writeChunk(chunkText, 8);
  e->writeShort(0x0102);
  e->setVersion(0x01020006);

  sxEntry* rle = file.newEntry(file.newTag("sxRunLength"));
  unsigned char bytes[rleRun + rleTail];
  std::memset(bytes, 0x5A, rleRun);
  for (int i = 0; i < rleTail; ++i) bytes[rleRun + i] = static_cast<unsigned char>(i + 1);
  rle->writeChunk(bytes, sizeof bytes);
  rle->writeInt(0x11223344);
  rle->setCompression(sxEntry::RUN_LENGTH);
  return file.write();
}

int checkPrimitiveFile(const char* path, bool& swapped, std::string& out) {
  Report r(out);
  sxFile file;
  if (!openReference(file, path, swapped, r)) return r.failures;
  r.check(file.getNumEntries() == 2 && file.getNumTags() == 2, "entry or tag count");
  sxEntry* e = loadReference(file, "sxPrimitives", r);
  if (!e) return r.failures;
  r.check(e->isByteSwapped() == swapped, "entry byte order differs from the file's");
  r.check(e->getVersion() == 0x01020006, "entry version");
  r.check(e->readByte() == 0xA5, "byte");
  r.check(e->readShort() == -12345, "short");
  r.check(e->readInt() == -123456789, "int");
  r.check(e->readBool() == true, "bool");
  r.check(e->readFloat() == 3.14159274f, "float");
  r.check(e->readDouble() == -2.718281828459045, "double");
  int ints[3];
  e->readInts(ints, 3);
  r.check(ints[0] == 1 && ints[1] == -2 && ints[2] == 0x7FFFFFFF, "ints");
  float floats[2];
  e->readFloats(floats, 2);
  r.check(floats[0] == 0.5f && floats[1] == -1.0e30f, "floats");
  int length = e->readInt();
  r.check(length == 7, "string length");
  char text[8] = {};
  r.check(length == 7 && e->readString(text, 7) == 7 && std::strcmp(text, "Solmax") == 0, "string");
  char chunk[8];
  r.check(e->readChunk(chunk, 8) == 8 && std::memcmp(chunk, chunkText, 8) == 0, "chunk");
  r.check(e->readShort() == 0x0102, "trailing short");
  r.check(e->readInt() == -1, "end of data");

  sxEntry* rle = file.findEntry("sxRunLength");
  r.check(rle && rle->getCompression() == sxEntry::RUN_LENGTH, "run-length entry not compressed");
  r.check(rle && file.readEntry(rle), "run-length entry unreadable");
  if (!rle || !rle->getData()) return r.failures;
  r.check(rle->getDataSize() == rleRun + rleTail + 2 + 4, "run-length data size");
  unsigned char bytes[rleRun + rleTail];
  r.check(rle->readChunk(bytes, sizeof bytes) == int(sizeof bytes), "run-length bytes");
  bool same = true;
  for (int i = 0; i < rleRun; ++i) same = same && bytes[i] == 0x5A;
  for (int i = 0; i < rleTail; ++i) same = same && bytes[rleRun + i] == i + 1;
  r.check(same, "run-length values");
  r.check(rle->readInt() == 0x11223344, "int after run-length bytes");
  return r.failures;
}

bool writeSceneFile(const char* path) {
  sxTestHolder::initClass();
  auto* root = new sxGroup;
  root->ref();
  named(root, "root");
  root->enableDynamic(true);
  sxArray* shared = nullptr;
  for (int t = 0; t < sxArray::numDataTypes; ++t) {
    auto* a = new sxArray(numArrayElements, sxArray::DATA_TYPE(t));
    for (int i = 0; i < numArrayElements; ++i) setElement(a, i);
    if (t == sxArray::TYPE_VEC3) {
      a->enableDynamic(true);
      shared = a;
    }
    auto* holder = new sxTestHolder;
    char name[32];
    std::snprintf(name, sizeof name, "array%d", t);
    holder->setName(name);
    holder->setArray(a);
    root->addAttribute(holder);
  }
  // A second holder of the shared array, an object that refers to itself
  // and two that refer to each other.
  auto* again = new sxTestHolder;
  again->setName("shared");
  again->setArray(shared);
  root->addAttribute(again);
  auto* self = named(new sxBase, "self");
  self->addAttribute(self);
  root->addAttribute(self);
  auto* a = named(new sxBase, "ping");
  auto* b = named(new sxBase, "pong");
  a->addAttribute(b);
  b->addAttribute(a);
  b->addAttribute(root);
  root->addAttribute(a);
  bool ok = sxLoader::exportFile(root, path);
  sxKeepCycle(root);
  root->unRef();
  return ok;
}

int checkSceneFile(const char* path, bool& swapped, std::string& out) {
  Report r(out);
  sxTestHolder::initClass();
  {
    sxFile file;
    r.check(file.open(path, "r"), "scene file does not open");
    swapped = file.isByteSwapped();
  }
  sxBase* root = sxLoader::importFile(path);
  r.check(root && root->isOfType(sxGroup::getClassType()), "root is not a group");
  if (!root) return r.failures;
  root->ref();
  r.check(root->getName() && std::strcmp(root->getName(), "root") == 0, "root name");
  r.check(root->isDynamic(), "root dynamic flag");
  const sxTList<sxBase*>* attributes = root->getAttribList();
  r.check(attributes && attributes->getNum() == sxArray::numDataTypes + 3, "root attributes");
  if (!attributes || attributes->getNum() != sxArray::numDataTypes + 3) {
    root->unRef();
    return r.failures;
  }
  for (int t = 0; t < sxArray::numDataTypes; ++t) {
    auto* holder = dynamic_cast<sxTestHolder*>((*attributes)[t]);
    sxArray* a = holder ? holder->getArray() : nullptr;
    r.check(a && a->getType() == t && a->getNum() == numArrayElements, "array type or count");
    if (!a || a->getType() != t || a->getNum() != numArrayElements) continue;
    bool all = true;
    for (int i = 0; i < numArrayElements; ++i) all = all && elementMatches(a, i);
    r.check(all,
            sxArray::DATA_TYPE(t) == sxArray::TYPE_DOUBLE ? "double array values" : "array values");
    r.check(a->isDynamic() == (t == sxArray::TYPE_VEC3), "array dynamic flag");
  }
  auto* vec3Holder = dynamic_cast<sxTestHolder*>((*attributes)[sxArray::TYPE_VEC3]);
  auto* again = dynamic_cast<sxTestHolder*>((*attributes)[sxArray::numDataTypes]);
  r.check(again && vec3Holder && again->getArray() == vec3Holder->getArray(), "array not shared");
  sxBase* self = (*attributes)[sxArray::numDataTypes + 1];
  r.check(self->getAttribList() && (*self->getAttribList())[0] == self, "self-reference");
  sxBase* ping = (*attributes)[sxArray::numDataTypes + 2];
  const sxTList<sxBase*>* pingAttributes = ping->getAttribList();
  sxBase* pong = pingAttributes ? (*pingAttributes)[0] : nullptr;
  r.check(pong && pong->getAttribList() && pong->getAttribList()->getNum() == 2 &&
              (*pong->getAttribList())[0] == ping && (*pong->getAttribList())[1] == root,
          "cycle");
  sxKeepCycle(root);
  root->unRef();
  return r.failures;
}

}  // namespace sxReference
