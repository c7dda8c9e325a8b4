#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstring>
#include <vector>

// The layout of the values (alignment, byte order) is guarded by the
// reference files of the byte-order test; here the ends of the data.
namespace {

// Entries exist only inside a file; a file that is never opened serves.
struct EntryFixture {
  sxFile file;
  sxEntry* entry;
  EntryFixture() : entry(file.newEntry(file.newTag("sxTest"))) {}
};

TEST(Entry, ReadersAtTheEndReturnTheirEndValuesAndStay) {
  EntryFixture f;
  sxEntry* e = f.entry;
  e->writeByte(0);
  const int in[3] = {10, -20, 30};
  e->writeInts(in, 3);
  const float fl[2] = {1.5f, -2.5f};
  e->writeFloats(fl, 2);
  e->reset();
  e->readByte();
  int ints[3];
  e->readInts(ints, 3);
  EXPECT_EQ(std::vector<int>(ints, ints + 3), std::vector<int>({10, -20, 30}));
  // Runs stop element by element at the end.
  float floats[4];
  e->readFloats(floats, 4);
  EXPECT_EQ(std::vector<float>(floats, floats + 4), std::vector<float>({1.5f, -2.5f, -1, -1}));
  ASSERT_EQ(e->getCursor(), e->getDataSize());
  EXPECT_EQ(e->readInt(), -1);
  EXPECT_TRUE(e->readBool());
  EXPECT_EQ(e->readByte(), -1);
  EXPECT_EQ(e->readShort(), -1);
  EXPECT_EQ(e->readFloat(), -1.0f);
  EXPECT_EQ(e->readDouble(), -1.0);
  char text[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ(e->readString(text, 4), -1);
  EXPECT_EQ(text[0], 'x') << "nothing copied past the end";
  EXPECT_EQ(e->readChunk(text, 4), -1);
  e->readInts(ints, 2);
  EXPECT_EQ(ints[1], -1);
  EXPECT_EQ(e->getCursor(), e->getDataSize()) << "no reader moves the cursor at the end";

  // An entry that has no data at all.
  sxEntry* empty = f.file.newEntry(0);
  EXPECT_EQ(empty->readInt(), -1);
  EXPECT_EQ(empty->getCursor(), 0);
}

TEST(Entry, ValuesReachingPastTheDataCountAsPastTheEnd) {
  EntryFixture f;
  sxEntry* e = f.entry;
  e->writeByte(1);
  e->writeByte(2);
  e->writeByte(3);
  e->reset();
  e->readByte();
  // The cursor (1) is inside the data, but the aligned int would be bytes
  // 4..7 of a 3-byte entry.
  EXPECT_EQ(e->readInt(), -1);
  EXPECT_EQ(e->getCursor(), 1);
  const unsigned char raw[2] = {2, 3};
  short expected;
  std::memcpy(&expected, raw, 2);
  EXPECT_EQ(e->readShort(), expected) << "shorts are not aligned";
  EXPECT_EQ(e->getCursor(), 3);
}

TEST(Entry, StringsAndChunks) {
  EntryFixture f;
  sxEntry* e = f.entry;
  e->writeString("abc");
  e->writeString(nullptr);  // writes nothing
  EXPECT_EQ(e->getDataSize(), 4);
  e->writeChunk("\x01\x02\x03\x04\x05", 5);
  EXPECT_EQ(e->getDataSize(), 9);
  e->reset();

  // A bounded copy: stops after the NUL, zero-fills, advances by len.
  char text[8];
  std::memset(text, 'z', sizeof text);
  EXPECT_EQ(e->readString(text, 6), 6);
  EXPECT_STREQ(text, "abc");
  EXPECT_EQ(text[5], 0);
  EXPECT_EQ(text[6], 'z');
  EXPECT_EQ(e->getCursor(), 6);

  // Fewer bytes remain than asked for: only those are copied.
  unsigned char chunk[8] = {};
  EXPECT_EQ(e->readChunk(chunk, 8), 3);
  EXPECT_EQ(chunk[0], 0x03);
  EXPECT_EQ(chunk[2], 0x05);
  EXPECT_EQ(chunk[3], 0);
  EXPECT_EQ(e->getCursor(), 9);

  // A string length reaching past the entry copies what is there.
  e->reset();
  char longer[32];
  std::memset(longer, 'q', sizeof longer);
  EXPECT_EQ(e->readString(longer, 32), 9);
  EXPECT_STREQ(longer, "abc");
  EXPECT_EQ(longer[31], 0);
  EXPECT_EQ(e->readInt(), -1) << "the cursor went past the end";
}

TEST(Entry, SetDataCopiesAndKeepsTheCursor) {
  EntryFixture f;
  sxEntry* e = f.entry;
  e->writeInt(1);
  e->writeInt(2);
  const int replacement[3] = {7, 8, 9};
  e->setData(replacement, 12);
  EXPECT_EQ(e->getDataSize(), 12);
  EXPECT_EQ(e->getCursor(), 8);
  EXPECT_EQ(e->readInt(), 9);
  EXPECT_FALSE(e->isByteSwapped());
  e->setData(nullptr, 0);
  EXPECT_EQ(e->getData(), nullptr);
  EXPECT_EQ(e->getDataSize(), 12) << "freeing the data keeps the size";
  e->reset();
  EXPECT_EQ(e->readInt(), -1);
}

}  // namespace
