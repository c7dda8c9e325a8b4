#pragma once

#include <cstddef>
#include <cstdint>

#include <sx/containers/sxList.h>
#include <sx/sxExport.h>

class sxEntry;
class sxEntryObserver;
struct sxiFileHeader;
struct sxiFileTag;
struct sxiFileState;

// A scene file: a 96-byte header, a table of type names (tags), a
// directory of entries and one data block per entry. Each persistent object
// is one entry tagged with its class's name; objects refer to each other by
// directory number, so shared objects and cycles are written once. The file
// is read in the byte order of the machine that wrote it. Entry data are
// read only on demand (readEntry).
//
// Objects and arrays made while reading are kept alive by the file while it
// is open. Closing gives them back without destroying any: an object read
// from the file belongs to whoever takes a reference on it, before or after
// the close (an object that nobody ever takes stays at a count of 0, as a
// new object does). Only an object whose record could not be read is
// destroyed at the close, unless something else took it.
//
// Failures return false or null and leave a code in getLastError() and a
// sentence in getErrorMessage(). One thread uses a file at a time.
//
// A reader holds no more than a budget of entry data at a time, a multiple
// of the file's size with a floor of a few tens of megabytes: a sound file
// never reaches it, and a hostile one fails with ERR_READ instead of making
// the process large.
class SX_API sxFile {
 public:
  enum FILE_ERROR {
    ERR_NONE = 0,
    ERR_OPEN = 1,       // the file could not be opened or created
    ERR_NOT_OPEN = 2,   // no open file, or the header could not be written
    ERR_READ = 3,       // short or failed read or seek, or a malformed table
    ERR_READ_ONLY = 4,  // write on a file not opened for reading and writing
    ERR_EMPTY = 5,      // open of an empty file
    ERR_MAGIC = 6,      // open of a file that is not a scene file
    ERR_NO_DATA = 7,    // readEntry of an entry without data
    ERR_WRITE = 8       // a data block could not be written
  };

  static constexpr std::uint32_t magic = 0xBA773265u;
  static constexpr int headerSize = 96;
  static constexpr int tagRecordSize = 68;
  static constexpr int tagNameSize = 64;
  static constexpr int directoryRecordSize = 24;
  // The writer reserves this much per entry for the directory.
  static constexpr int reservedPerEntry = 112;

  sxFile();
  ~sxFile();
  sxFile(const sxFile&) = delete;
  sxFile& operator=(const sxFile&) = delete;

  // mode "r" (read-only) or "rw" (read-write). Reads the header, the tag
  // table and the directory; entry data are read by readEntry.
  bool open(const char* path, const char* mode);
  // Creates or truncates the file for reading and writing.
  bool create(const char* path);
  /// Starts a file that lives only in memory, named `name` in messages:
  /// its entries are filled by their writers (or setData) and read where
  /// they are, so a loader can build a scene file from another format and
  /// read it (sxLoader::readScene), or write one and look at its entries,
  /// without touching the disk. write() fails on it.
  bool createInMemory(const char* name);
  /// Tells `observer` of every value written to the entries made from now
  /// on, until the file closes (null: nobody). The observer must outlive
  /// those writes.
  void setObserver(sxEntryObserver* observer);
  // Writes header, tags, data blocks and directory. The file stays open.
  bool write();
  void close();
  // At least 97 bytes, starting with the magic number in either byte order.
  static bool isSolmaxFormat(const char* path);

  // The tag of that type name, made when it does not exist yet (names are
  // cut to 63 characters).
  int newTag(const char* typeName);
  int findTag(const char* typeName) const;
  const char* getTagDesc(int tag) const;
  int getNumTags() const { return tags.getNum(); }

  // A new empty entry at the end of the directory; null for an unknown tag.
  sxEntry* newEntry(int tag);
  sxEntry* getEntry(int dirNum) const;
  int getNumEntries() const { return entries.getNum(); }
  // The first entry with that tag, in directory order.
  sxEntry* findEntry(int tag) const;
  sxEntry* findEntry(const char* typeName) const;
  // The next entry after `after` with that tag; the first for null.
  sxEntry* findNextEntry(int tag, const sxEntry* after) const;
  // The entry that stands for the object (the last such entry).
  sxEntry* findEntry(const void* handle) const;
  // Loads (or reloads) the entry's data.
  bool readEntry(sxEntry* entry);
  // Takes the entry out of the directory (the last entry moves into its
  // place) and destroys it. True also for null.
  bool removeEntry(sxEntry* entry);

  unsigned getVersion() const;
  FILE_ERROR getLastError() const { return lastError; }
  /// A sentence on the last failure, for people (never null; empty when
  /// there was none).
  const char* getErrorMessage() const;
  bool isByteSwapped() const { return byteSwapped; }
  bool isOpen() const;  ///< a file on disk, or one in memory
  const char* getFileName() const { return fileName; }

 private:
  friend class sxEntry;
  friend struct sxiFileAccess;
  // The name and a fresh header of a file being written.
  bool startWriting(const char* name);
  int addEntry(sxEntry* entry);
  bool writeDirectory();
  bool writeData();
  bool writeTagList();
  void cleanUp();
  void releaseHolds();
  bool fail(FILE_ERROR code, const char* detail = nullptr);
  bool readTables();
  bool readAt(std::int64_t offset, void* out, std::size_t n);
  void handleChanged(sxEntry* entry, const void* old);

  int fd;
  int openFlags;
  char* fileName;
  FILE_ERROR lastError;
  bool byteSwapped;
  sxiFileHeader* header;
  sxTList<sxEntry*> entries;
  sxTList<sxiFileTag*> tags;
  // Bookkeeping that keeps reading and writing O(1) per reference: entries
  // by handle, the class of each tag and a read-ahead buffer.
  sxiFileState* state;
};
