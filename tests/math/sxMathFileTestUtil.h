#pragma once

#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/sxTestFiles.h"

// An entry in memory: entries exist only inside a file, and one that is
// never opened serves.
struct sxMemoryEntry {
  sxFile file;
  sxEntry* entry = file.newEntry(file.newTag("sxMathTest"));

  // The data as written, byte for byte.
  std::vector<unsigned char> bytes() const {
    return {entry->getData(), entry->getData() + entry->getDataSize()};
  }
  // A fresh entry holding the first n bytes of this one's data, the rest
  // lost, as in a damaged file.
  sxEntry* truncated(int n) {
    sxEntry* cut = file.newEntry(entry->getTag());
    if (n > 0) cut->setData(entry->getData(), n);
    return cut;
  }
};

// The native bytes of a run of numbers, as the entry's writers store them.
template <class T>
std::vector<unsigned char> sxNativeBytes(const T* values, std::size_t n) {
  std::vector<unsigned char> out(n * sizeof(T));
  std::memcpy(out.data(), values, out.size());
  return out;
}
template <class T>
std::vector<unsigned char> sxNativeBytes(std::initializer_list<T> values) {
  return sxNativeBytes(values.begin(), values.size());
}
inline void sxAppend(std::vector<unsigned char>& to, const std::vector<unsigned char>& more) {
  to.insert(to.end(), more.begin(), more.end());
}

// Writes one entry through put into a file on disk, closes it, opens it
// again and hands the entry as loaded from the disk to get, which must read
// every byte that put wrote.
template <class Put, class Get>
void sxRoundTripThroughFile(Put put, Get get) {
  sxTempDir dir;
  const std::string path = dir.file("math.sx");
  {
    sxFile out;
    ASSERT_TRUE(out.create(path.c_str()));
    put(out.newEntry(out.newTag("sxMathTest")));
    ASSERT_TRUE(out.write());
  }
  sxFile in;
  ASSERT_TRUE(in.open(path.c_str(), "r"));
  sxEntry* e = in.getEntry(0);
  ASSERT_NE(e, nullptr);
  ASSERT_TRUE(in.readEntry(e));
  get(e);
  EXPECT_EQ(e->getCursor(), e->getDataSize()) << "the reader stops where the writer did";
}
