#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <array>
#include <bit>
#include <cstring>

// The layout of the values (alignment, byte order) is guarded by the
// reference files of the byte-order test; here the ends of the data.
namespace {

// Entries exist only inside a file; a file that is never opened serves.
class Entry : public testing::Test {
 protected:
  sxFile file;
  sxEntry* e = file.newEntry(file.newTag("sxTest"));
};

// At the end every reader returns its end value and leaves the cursor; a
// value that would reach past the data counts as past the end, also when
// the cursor is inside it, and runs stop element by element.
TEST_F(Entry, ReadersAtTheEndReturnTheirEndValuesAndStay) {
  for (unsigned char b : {1, 2, 3}) e->writeByte(b);
  e->reset();
  e->readByte();
  EXPECT_EQ(e->readInt(), -1) << "an aligned int would be bytes 4..7";
  EXPECT_EQ(e->getCursor(), 1);
  EXPECT_EQ(e->readShort(), std::bit_cast<short>(std::array<unsigned char, 2>{2, 3}))
      << "shorts are not aligned";
  ASSERT_EQ(e->getCursor(), e->getDataSize());
  EXPECT_TRUE(e->readBool());
  EXPECT_EQ(e->readByte(), -1);
  EXPECT_EQ(e->readShort(), -1);
  EXPECT_EQ(e->readFloat(), -1.0f);
  EXPECT_EQ(e->readDouble(), -1.0);
  char text[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ(e->readString(text, 4), -1);
  EXPECT_EQ(e->readChunk(text, 4), -1);
  EXPECT_EQ(text[0], 'x') << "nothing copied past the end";
  EXPECT_EQ(e->getCursor(), e->getDataSize()) << "no reader moves the cursor at the end";
  e->writeFloat(1.5f);
  e->setData(e->getData(), 8);
  e->reset();
  e->readByte();
  float floats[2];
  e->readFloats(floats, 2);
  EXPECT_EQ(floats[0], 1.5f);
  EXPECT_EQ(floats[1], -1.0f);
  EXPECT_EQ(file.newEntry(0)->readInt(), -1) << "an entry without data";
}

TEST_F(Entry, StringsAndChunks) {
  e->writeString("abc");
  e->writeString(nullptr);  // writes nothing
  e->writeChunk("\x01\x02\x03\x04\x05", 5);
  EXPECT_EQ(e->getDataSize(), 9);
  e->reset();
  // A bounded copy: stops after the NUL, zero-fills, advances by len.
  char text[8];
  std::memset(text, 'z', sizeof text);
  EXPECT_EQ(e->readString(text, 6), 6);
  EXPECT_STREQ(text, "abc");
  EXPECT_EQ(text[6], 'z');
  // Fewer bytes remain than asked for: only those are copied.
  unsigned char chunk[8] = {};
  EXPECT_EQ(e->readChunk(chunk, 8), 3);
  EXPECT_EQ(chunk[2], 0x05);
  EXPECT_EQ(chunk[3], 0);
  // A string length reaching past the entry copies what is there.
  e->reset();
  char longer[32];
  std::memset(longer, 'q', sizeof longer);
  EXPECT_EQ(e->readString(longer, 32), 9);
  EXPECT_STREQ(longer, "abc");
  EXPECT_EQ(longer[31], 0);
  EXPECT_EQ(e->readInt(), -1) << "the cursor went past the end";
}

TEST_F(Entry, SetDataCopiesAndKeepsTheCursor) {
  e->writeInt(1);
  e->writeInt(2);
  const int replacement[3] = {7, 8, 9};
  e->setData(replacement, 12);
  EXPECT_EQ(e->getCursor(), 8);
  EXPECT_EQ(e->readInt(), 9);
  e->setData(nullptr, 0);
  EXPECT_EQ(e->getData(), nullptr);
  EXPECT_EQ(e->getDataSize(), 12) << "freeing the data keeps the size";
  e->reset();
  EXPECT_EQ(e->readInt(), -1);
}

}  // namespace
