#pragma once

#include <cstdint>

#include <sx/sxExport.h>

class sxEntryObserver;
class sxFile;

// One directory entry of a scene file: a data buffer with a cursor and the
// typed readers and writers that every class's read and write use. Numbers
// are stored in the byte order of the machine that wrote them; an entry
// written elsewhere is marked byte-swapped and its readers reverse them.
// Ints, bools and floats are aligned to 4 bytes and doubles to 8, relative
// to the start of the data. Readers at or past the end of the data return
// the end-of-data value (-1, -1.0 or true) and leave the cursor where it is.
// Entries are made only by sxFile.
class SX_API sxEntry {
 public:
  // Any other value read from a file counts as no compression.
  enum COMPRESSION : int { NO_COMPRESSION = 0, RUN_LENGTH = 1 };

  /// The kinds of value the writers put into the data, as an observer of
  /// the file is told of them (see sxFile::setObserver).
  enum VALUE : unsigned char {
    VALUE_BYTE,
    VALUE_SHORT,
    VALUE_INT,
    VALUE_BOOL,  ///< an int, 0 or 1
    VALUE_FLOAT,
    VALUE_DOUBLE,
    VALUE_INTS,    ///< a run of ints written at once
    VALUE_FLOATS,  ///< a run of floats written at once
    VALUE_STRING,  ///< the characters and their NUL
    VALUE_CHUNK,
    VALUE_REF  ///< an int: the directory number of another entry, or -1
  };

  static constexpr std::uint32_t nativeMagic = 0xBA773265u;
  static constexpr std::uint32_t swappedMagic = 0x653277BAu;

  sxEntry(const sxEntry&) = delete;
  sxEntry& operator=(const sxEntry&) = delete;

  int getTag() const { return tag; }
  // The position given by newEntry; -1 for an entry read from a file.
  int getDirNum() const { return dirNum; }
  const void* getHandle() const { return handle; }
  // The live object that this entry stands for (never written to the file).
  void setHandle(const void* object);
  unsigned getVersion() const { return version; }
  void setVersion(unsigned v) { version = v; }
  bool isByteSwapped() const { return byteSwapped; }
  const unsigned char* getData() const { return data; }
  int getDataSize() const { return dataSize; }
  int getCursor() const { return cursor; }
  COMPRESSION getCompression() const { return compression; }
  void setCompression(COMPRESSION c) { compression = c; }
  void reset() { cursor = 0; }
  // Null frees the data (the size is kept). Otherwise copies n bytes in and
  // marks them native; the cursor stays.
  void setData(const void* p, int n);

  void writeByte(unsigned char v);
  void writeShort(short v);
  void writeInt(int v);
  void writeBool(bool v);
  void writeFloat(float v);
  void writeDouble(double v);
  void writeInts(const int* v, int n);
  void writeFloats(const float* v, int n);
  // The characters and the terminating NUL; nothing for null.
  void writeString(const char* s);
  void writeChunk(const void* p, int n);
  /// A reference to another entry of the file: its directory number, or -1
  /// for none. Stored as an int; only an observer tells it apart.
  void writeRef(int dirNum);

  int readByte();
  short readShort();
  int readInt();
  bool readBool();
  float readFloat();
  double readDouble();
  void readInts(int* out, int n);
  void readFloats(float* out, int n);
  // Copies up to len bytes like a bounded string copy (stopping after a NUL
  // and zero-filling the rest of dst; dst is not terminated when no NUL
  // comes within len) and advances the cursor by len. Returns the number of
  // bytes taken from the data, or -1 (nothing copied) at the end.
  int readString(char* dst, int len);
  // Copies n bytes, or those that remain; returns the count, or -1 at the
  // end.
  int readChunk(void* dst, int n);

 private:
  friend class sxFile;
  friend struct sxiFileAccess;
  explicit sxEntry(int tag);
  ~sxEntry();

  // Room for n more bytes at position `at` (growing as the writers do);
  // false when the buffer cannot hold them.
  bool reserve(int at, int n, bool doubled);
  void noteEnd(int end);
  // The aligned position of a value of `size` bytes that lies wholly within
  // the data, or -1.
  int readPosition(int align, int size) const;
  void readSwapped(int at, void* out, int size);
  void writeAligned(VALUE kind, int align, const void* p, int size);
  void writeBytes(VALUE kind, const void* p, int n);
  template <class T>
  void readRun(T* out, int n);
  template <class T>
  T readNumber(int align, T endValue);
  // Shrinks the buffer to the data once an entry is complete.
  void trim();
  void freeData();

  std::uint32_t magic;
  int capacity;
  int cursor;
  bool byteSwapped;
  int tag;
  int offset;
  COMPRESSION compression;
  int dataSize;
  unsigned char* data;
  const void* handle;
  int dirNum;
  std::uint32_t version;
  // Bookkeeping: the file that lists the entry and its position there.
  sxFile* owner;
  int slot;
  // Told of every value written (the file's observer when the entry was made).
  sxEntryObserver* observer;
};
