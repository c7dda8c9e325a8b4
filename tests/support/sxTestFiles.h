#pragma once

#include <sx/object/sxBase.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <stdlib.h>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// A fresh directory for one test, removed with everything in it.
class sxTempDir {
 public:
  sxTempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sxfilesXXXXXX").string();
    path = mkdtemp(pattern.data()) ? pattern : "";
  }
  ~sxTempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
  sxTempDir(const sxTempDir&) = delete;
  sxTempDir& operator=(const sxTempDir&) = delete;

  std::string file(const std::string& name) const { return path + "/" + name; }
  int count() const { return int(std::distance(std::filesystem::directory_iterator(path), {})); }

  std::string path;
};

inline std::vector<unsigned char> sxReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline std::string sxReadText(const std::string& path) {
  const std::vector<unsigned char> bytes = sxReadBytes(path);
  return {bytes.begin(), bytes.end()};
}

inline void sxWriteBytes(const std::string& path, const std::vector<unsigned char>& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

inline std::vector<unsigned char> sxEntryBytes(const sxEntry* e) {
  return {e->getData(), e->getData() + e->getDataSize()};
}

// Little-endian number access for building and inspecting files by hand.
inline std::uint32_t sxGet32(const std::vector<unsigned char>& b, std::size_t at) {
  return std::uint32_t(b[at]) | std::uint32_t(b[at + 1]) << 8 | std::uint32_t(b[at + 2]) << 16 |
         std::uint32_t(b[at + 3]) << 24;
}
inline void sxPut32(std::vector<unsigned char>& b, std::size_t at, std::uint32_t v) {
  if (b.size() < at + 4) b.resize(at + 4);
  for (int i = 0; i < 4; ++i) b[at + i] = static_cast<unsigned char>(v >> (8 * i));
}

// Creates the file, lets fill add its entries and writes it.
template <class Fill>
bool sxWriteFile(const std::string& path, Fill fill) {
  sxFile f;
  if (!f.create(path.c_str())) return false;
  fill(f);
  return f.write();
}

// The record of a plain object: its name (none for null), no flags, its
// attribute count (by default that of refs) and their directory numbers.
inline void sxWriteObject(sxEntry* e, const char* name, const std::vector<int>& refs,
                          int count = -1) {
  e->writeInt(name ? int(std::strlen(name)) + 1 : 0);
  e->writeString(name);
  e->writeShort(0);
  e->writeInt(count < 0 ? int(refs.size()) : count);
  for (int r : refs) e->writeInt(r);
}

// A new entry of the class tag holding the record of a group without
// attributes: its two flag words and its children's directory numbers.
inline sxEntry* sxWriteGroup(sxFile& f, const char* tag, const char* name,
                             const std::vector<int>& children = {}, int travFlags = 0) {
  sxEntry* e = f.newEntry(f.newTag(tag));
  sxWriteObject(e, name, {});
  e->writeShort(short(travFlags));
  e->writeShort(0);
  e->writeInt(int(children.size()));
  for (int c : children) e->writeInt(c);
  return e;
}

// Attribute i of an object, null where there is none.
inline sxBase* sxAttribute(const sxBase* obj, int i) {
  const sxTList<sxBase*>* list = obj->getAttribList();
  return list && list->indexInRange(i) ? (*list)[i] : nullptr;
}
inline int sxNumAttributes(const sxBase* obj) {
  return obj->getAttribList() ? obj->getAttribList()->getNum() : 0;
}
