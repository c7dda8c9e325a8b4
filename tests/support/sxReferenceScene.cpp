#include "support/sxReferenceScene.h"

#include <sx/sxCore.h>

#include <cmath>
#include <cstring>
#include <type_traits>
#include <vector>

#include "support/sxCycles.h"
#include "support/sxReferenceMath.h"
#include "support/sxTestFiles.h"
#include "support/sxTestHolder.h"

namespace sxReference {

namespace {

constexpr int numArrayElements = 5;
constexpr int rleRun = 300;
constexpr int rleTail = 10;
constexpr const char* chunkText = "chunk\x01\x02\x03";
constexpr const char* mathTag = "sxMathValues";

// Collects the failures of a reference check, one line each.
struct Report {
  std::string& out;
  int failures = 0;
  void check(bool ok, const std::string& what) {
    if (!ok) out += what + '\n';
    failures += !ok;
  }
};

// Opens a reference file, tells whether it came from a machine of the other
// byte order and loads the first entry of that tag; null, noted, on failure.
sxEntry* openReference(sxFile& file, const char* path, const char* tag, bool& swapped, Report& r) {
  bool ok = file.open(path, "r");
  r.check(ok, std::string(path) + " does not open");
  if (!ok) return nullptr;
  swapped = file.isByteSwapped();
  sxEntry* e = file.findEntry(tag);
  ok = e && file.readEntry(e) && e->getData();
  r.check(ok, std::string(tag) + " entry missing");
  return ok ? e : nullptr;
}

// A long run of one byte, then a short tail of distinct ones.
std::vector<unsigned char> runLengthBytes() {
  std::vector<unsigned char> bytes(rleRun, 0x5A);
  for (int i = 1; i <= rleTail; ++i) bytes.push_back(static_cast<unsigned char>(i));
  return bytes;
}

// An array of the reference values of type t: each a function of t, of the
// element i and of the position k within the element.
sxArray* referenceArray(int t) {
  auto* a = new sxArray(numArrayElements, sxArray::DATA_TYPE(t));
  const int size = a->getElemSize();
  for (int i = 0; i < numArrayElements; ++i) {
    unsigned char* p = static_cast<unsigned char*>(a->getData()) + i * size;
    auto put = [p](int at, const auto& v) { std::memcpy(p + at, &v, sizeof v); };
    const int n = (t + 1) * 1000003 * (i + 1) - 0x12345;
    if (t == sxArray::TYPE_USHORT)
      put(0, static_cast<unsigned short>(n));
    else if (t == sxArray::TYPE_INT)
      put(0, n);
    else if (t == sxArray::TYPE_DOUBLE)
      put(0, 1.0e100 / double(i + 3) - 3.25);
    else if (t == sxArray::TYPE_UBYTEVEC3 || t == sxArray::TYPE_UBYTEVEC4)
      for (int k = 0; k < size; ++k) p[k] = static_cast<unsigned char>(17 * t + 5 * i + k + 1);
    else
      for (int k = 0; k < size / 4; ++k)
        put(4 * k, float(t) * 1.5f + float(i) * -0.25f + float(k) * 1024.125f);
  }
  return a;
}

sxBase* named(sxBase* obj, const char* name) {
  obj->setName(name);
  return obj;
}

// Math values are given bit for bit, so the records this machine writes of
// two must be equal; but the frustum is computed, and machines may round it
// differently, so it is compared within a tolerance (a number read in the
// wrong byte order is far off).
template <class V>
bool same(const V& a, const V& b) {
  sxFile scratch;
  sxEntry* e[2] = {scratch.newEntry(scratch.newTag("sxScratch")), scratch.newEntry(0)};
  a.write(e[0]);
  b.write(e[1]);
  return sxEntryBytes(e[0]) == sxEntryBytes(e[1]);
}

bool near(float a, float b) {
  return std::fabs(a - b) <= 1e-4f * std::fmax(1.0f, std::fabs(b));
}
bool near(const sxVec3& a, const sxVec3& b) {
  return near(a.x, b.x) && near(a.y, b.y) && near(a.z, b.z);
}
bool near(const sxPlane& a, const sxPlane& b) {
  return near(a.normal, b.normal) && near(a.offset, b.offset) && a.octant == b.octant;
}
bool same(const sxFrustum& a, const sxFrustum& b) {
  bool ok = a.isEmpty() == b.isEmpty() && a.isOrtho() == b.isOrtho() &&
            near(a.getNear(), b.getNear()) && near(a.getFar(), b.getFar());
  for (int i = 0; i < 6; ++i) ok = ok && near(a.getPlane(i), b.getPlane(i));
  for (int i = 0; i < sxFrustum::numEdges; ++i)
    ok = ok && near(a.getEdgePlane(i), b.getEdgePlane(i));
  for (int i = 0; i < sxFrustum::numCorners; ++i) ok = ok && near(a.getCorner(i), b.getCorner(i));
  const sxSphere& sa = a.getBoundingSphere();
  const sxSphere& sb = b.getBoundingSphere();
  return ok && near(sa.center, sb.center) && near(sa.radius, sb.radius);
}

}  // namespace

bool writePrimitiveFile(const char* path) {
  return sxWriteFile(path, [](sxFile& file) {
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
    const std::vector<unsigned char> bytes = runLengthBytes();
    rle->writeChunk(bytes.data(), int(bytes.size()));
    rle->writeInt(0x11223344);
    rle->setCompression(sxEntry::RUN_LENGTH);
  });
}

int checkPrimitiveFile(const char* path, bool& swapped, std::string& out) {
  Report r{out};
  sxFile file;
  sxEntry* e = openReference(file, path, "sxPrimitives", swapped, r);
  if (!e) return r.failures;
  r.check(file.getNumEntries() == 2 && file.getNumTags() == 2, "entry or tag count");
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
  std::vector<unsigned char> bytes(rleRun + rleTail);
  r.check(rle->readChunk(bytes.data(), int(bytes.size())) == int(bytes.size()), "run-length bytes");
  r.check(bytes == runLengthBytes(), "run-length values");
  r.check(rle->readInt() == 0x11223344, "int after run-length bytes");
  return r.failures;
}

bool writeSceneFile(const char* path) {
  sxTestHolder::initClass();
  sxRef<sxBase> root(named(new sxGroup, "root"));
  root->enableDynamic(true);
  auto addHolder = [&root](const std::string& name, sxArray* a) {
    auto* holder = new sxTestHolder;
    holder->setName(name.c_str());
    holder->setArray(a);
    root->addAttribute(holder);
    return a;
  };
  sxArray* shared = nullptr;
  for (int t = 0; t < sxArray::numDataTypes; ++t) {
    sxArray* a = addHolder("array" + std::to_string(t), referenceArray(t));
    if (t == sxArray::TYPE_VEC3) shared = a;
  }
  shared->enableDynamic(true);
  // A second holder of the shared array, an object that refers to itself
  // and two that refer to each other.
  addHolder("shared", shared);
  auto* self = named(new sxBase, "self");
  self->addAttribute(self);
  root->addAttribute(self);
  auto* a = named(new sxBase, "ping");
  auto* b = named(new sxBase, "pong");
  a->addAttribute(b);
  b->addAttribute(a);
  b->addAttribute(root.get());
  root->addAttribute(a);
  sxKeepCycle(root.get());
  return sxLoader::exportFile(root.get(), path);
}

int checkSceneFile(const char* path, bool& swapped, std::string& out) {
  Report r{out};
  sxTestHolder::initClass();
  sxFile file;
  if (!openReference(file, path, "sxGroup", swapped, r)) return r.failures;
  sxRef<sxBase> root(sxLoader::importFile(path));
  r.check(root && root->isOfType(sxGroup::getClassType()), "root is not a group");
  if (!root) return r.failures;
  sxKeepCycle(root.get());
  r.check(root->getName() && std::strcmp(root->getName(), "root") == 0, "root name");
  r.check(root->isDynamic(), "root dynamic flag");
  const bool complete = sxNumAttributes(root.get()) == sxArray::numDataTypes + 3;
  r.check(complete, "root attributes");
  if (!complete) return r.failures;
  auto array = [&](int i) {
    auto* holder = dynamic_cast<sxTestHolder*>(sxAttribute(root.get(), i));
    return holder ? holder->getArray() : nullptr;
  };
  for (int t = 0; t < sxArray::numDataTypes; ++t) {
    sxArray* a = array(t);
    r.check(a && a->getType() == t && a->getNum() == numArrayElements, "array type or count");
    if (!a || a->getType() != t || a->getNum() != numArrayElements) continue;
    sxRef<sxArray> expected(referenceArray(t));
    r.check(std::memcmp(a->getData(), expected->getData(), expected->getSize()) == 0,
            t == sxArray::TYPE_DOUBLE ? "double array values" : "array values");
    r.check(a->isDynamic() == (t == sxArray::TYPE_VEC3), "array dynamic flag");
  }
  sxArray* again = array(sxArray::numDataTypes);
  r.check(again && again == array(sxArray::TYPE_VEC3), "array not shared");
  sxBase* self = sxAttribute(root.get(), sxArray::numDataTypes + 1);
  r.check(sxAttribute(self, 0) == self, "self-reference");
  sxBase* ping = sxAttribute(root.get(), sxArray::numDataTypes + 2);
  sxBase* pong = sxAttribute(ping, 0);
  r.check(pong && sxNumAttributes(pong) == 2 && sxAttribute(pong, 0) == ping &&
              sxAttribute(pong, 1) == root.get(),
          "cycle");
  return r.failures;
}

bool writeMathFile(const char* path) {
  return sxWriteFile(path, [](sxFile& file) {
    sxEntry* e = file.newEntry(file.newTag(mathTag));
    eachMathValue([e](const auto& value, const char*) { value.write(e); });
  });
}

int checkMathFile(const char* path, bool& swapped, std::string& out) {
  Report r{out};
  sxFile file;
  sxEntry* e = openReference(file, path, mathTag, swapped, r);
  if (!e) return r.failures;
  eachMathValue([e, &r](const auto& expected, const char* name) {
    std::remove_cvref_t<decltype(expected)> value;
    value.read(e);
    r.check(same(value, expected), name);
  });
  r.check(e->getCursor() == e->getDataSize(), "math entry not read to its end");
  return r.failures;
}

}  // namespace sxReference
