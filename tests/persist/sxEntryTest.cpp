#include <gtest/gtest.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <cstring>
#include <vector>

namespace {

// Entries exist only inside a file; a file that is never opened serves.
struct EntryFixture {
  sxFile file;
  sxEntry* entry;
  EntryFixture() : entry(file.newEntry(file.newTag("sxTest"))) {}
};

TEST(Entry, AlignmentPaddingAndDataSize) {
  EntryFixture f;
  sxEntry* e = f.entry;
  e->writeByte(7);
  e->writeInt(0x01020304);
  EXPECT_EQ(e->getDataSize(), 8);
  EXPECT_EQ(e->getCursor(), 8);
  const unsigned char* d = e->getData();
  EXPECT_EQ(d[0], 7);
  EXPECT_EQ(d[1] | d[2] | d[3], 0) << "padding is written as the zeroed buffer holds it";

  e->writeShort(-2);    // 8..9, no alignment
  e->writeDouble(0.5);  // aligned to 16
  EXPECT_EQ(e->getDataSize(), 24);
  e->writeFloat(1.0f);  // 24
  e->writeBool(false);  // 28
  EXPECT_EQ(e->getDataSize(), 32);

  e->reset();
  EXPECT_EQ(e->readByte(), 7);
  EXPECT_EQ(e->readInt(), 0x01020304);
  EXPECT_EQ(e->readShort(), -2);
  EXPECT_EQ(e->readDouble(), 0.5);
  EXPECT_EQ(e->readFloat(), 1.0f);
  EXPECT_FALSE(e->readBool());
  EXPECT_EQ(e->getCursor(), 32);
}

TEST(Entry, ReadersAtTheEndReturnTheirEndValuesAndStay) {
  EntryFixture f;
  sxEntry* e = f.entry;
  e->writeInt(5);
  e->readInt();  // cursor now at dataSize
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
  int ints[2] = {9, 9};
  e->readInts(ints, 2);
  EXPECT_EQ(ints[0], -1);
  EXPECT_EQ(ints[1], -1);
  EXPECT_EQ(e->getCursor(), 4) << "no reader moves the cursor at the end";

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

TEST(Entry, RunsOfIntsAndFloatsStopPerElementAtTheEnd) {
  EntryFixture f;
  sxEntry* e = f.entry;
  const int in[3] = {10, -20, 30};
  e->writeByte(0);
  e->writeInts(in, 3);
  EXPECT_EQ(e->getDataSize(), 16);
  const float fl[2] = {1.5f, -2.5f};
  e->writeFloats(fl, 2);
  e->reset();
  e->readByte();
  int out[5];
  e->readInts(out, 3);
  EXPECT_EQ(std::vector<int>(out, out + 3), std::vector<int>({10, -20, 30}));
  float fout[4];
  e->readFloats(fout, 4);
  EXPECT_EQ(fout[0], 1.5f);
  EXPECT_EQ(fout[1], -2.5f);
  EXPECT_EQ(fout[2], -1.0f);
  EXPECT_EQ(fout[3], -1.0f);
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

TEST(Entry, BuffersGrowBeyondLargeWrites) {
  EntryFixture f;
  sxEntry* e = f.entry;
  std::vector<unsigned char> big(5000);
  for (std::size_t i = 0; i < big.size(); ++i) big[i] = static_cast<unsigned char>(i * 7);
  for (int i = 0; i < 300; ++i) e->writeInt(i);
  e->writeChunk(big.data(), int(big.size()));
  e->writeDouble(4.25);
  EXPECT_EQ(e->getDataSize(), 1200 + 5000 + 8);
  e->reset();
  for (int i = 0; i < 300; ++i) ASSERT_EQ(e->readInt(), i);
  std::vector<unsigned char> back(5000);
  EXPECT_EQ(e->readChunk(back.data(), 5000), 5000);
  EXPECT_EQ(back, big);
  EXPECT_EQ(e->readDouble(), 4.25);
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
