// Writing .sxt: the scene is written into an in-memory scene file while an
// observer records the kind and place of every value; the entries are then
// printed in directory order from their data and those records.

#include <sx/sxCore.h>

#include <charconv>
#include <cinttypes>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

#include "sxTextFormat.h"

namespace {

constexpr std::uint32_t none = 0xFFFFFFFFu;
constexpr int valuesPerLine = 12;  // whole vec2, vec3 and vec4 elements

// The values written to each entry, in order: one list per entry, linked
// through one array, since writes to an entry interleave with those to the
// entries it refers to.
class Recorder : public sxEntryObserver {
 public:
  struct Value {
    std::uint32_t at, size, next;
    sxEntry::VALUE kind;
  };

  void written(const sxEntry& entry, sxEntry::VALUE kind, int at, int size) override {
    const auto e = std::size_t(entry.getDirNum());
    if (e >= head.size()) {
      head.resize(e + 1, none);
      tail.resize(e + 1, none);
    }
    if (count % blockSize == 0) blocks.emplace_back(new Value[blockSize]);
    const std::uint32_t i = count++;
    value(i) = {std::uint32_t(at), std::uint32_t(size), none, kind};
    if (head[e] == none)
      head[e] = i;
    else
      value(tail[e]).next = i;
    tail[e] = i;
  }

  // The values of entry e, in order, into out.
  void valuesOf(int e, std::vector<Value>& out) const {
    out.clear();
    if (std::size_t(e) >= head.size()) return;
    for (std::uint32_t i = head[std::size_t(e)]; i != none; i = value(i).next)
      out.push_back(value(i));
  }

 private:
  // Stored in blocks, which never move: a large scene records millions.
  static constexpr std::uint32_t blockSize = 1 << 16;
  Value& value(std::uint32_t i) const { return blocks[i / blockSize][i % blockSize]; }

  std::vector<std::unique_ptr<Value[]>> blocks;
  std::uint32_t count = 0;
  std::vector<std::uint32_t> head, tail;
};

// Buffered text output that remembers a failure. Every put makes room
// for what it writes (short texts; runs and strings go value by value).
class Out {
 public:
  explicit Out(std::FILE* f) : file(f), buffer(new char[capacity + slack]) {}
  ~Out() { flush(); }
  Out(const Out&) = delete;
  Out& operator=(const Out&) = delete;

  void put(const char* s, std::size_t n) {
    if (n > slack) {
      flush();
      failed = failed || std::fwrite(s, 1, n, file) != n;
      return;
    }
    room();
    std::memcpy(cursor, s, n);
    cursor += n;
  }
  void put(std::string_view s) { put(s.data(), s.size()); }
  void put(char c) {
    room();
    *cursor++ = c;
  }
  template <class T>
  void number(T v) {
    room();
    cursor = std::to_chars(cursor, cursor + 40, v).ptr;
  }
  // Exact: the shortest text that reads back to the same bits; a NaN as
  // its bits, since no decimal text keeps its payload.
  template <class F, class Bits>
  void real(F v) {
    if (v != v) {
      Bits bits;
      std::memcpy(&bits, &v, sizeof bits);
      char digits[24];
      auto r = std::to_chars(digits, digits + sizeof digits, bits, 16);
      put("nan:");
      for (std::ptrdiff_t k = r.ptr - digits; k < std::ptrdiff_t(2 * sizeof bits); ++k) put('0');
      put(digits, std::size_t(r.ptr - digits));
      return;
    }
    number(v);
  }
  void quoted(const unsigned char* s, std::size_t n) {
    static const char hex[] = "0123456789abcdef";
    put('"');
    for (std::size_t i = 0; i < n; ++i) {
      const unsigned char c = s[i];
      room();
      if (c == '"' || c == '\\') {
        *cursor++ = '\\';
        *cursor++ = char(c);
      } else if (c == '\n') {
        *cursor++ = '\\';
        *cursor++ = 'n';
      } else if (c == '\t') {
        *cursor++ = '\\';
        *cursor++ = 't';
      } else if (c < 0x20 || c == 0x7f) {
        *cursor++ = '\\';
        *cursor++ = 'x';
        *cursor++ = hex[c >> 4];
        *cursor++ = hex[c & 15];
      } else {
        *cursor++ = char(c);
      }
    }
    put('"');
  }
  void hexBytes(const unsigned char* s, std::size_t n) {
    static const char hex[] = "0123456789abcdef";
    for (std::size_t i = 0; i < n; ++i) {
      room();
      *cursor++ = hex[s[i] >> 4];
      *cursor++ = hex[s[i] & 15];
    }
  }
  bool flush() {
    const std::size_t n = std::size_t(cursor - buffer.get());
    if (n && !failed) failed = std::fwrite(buffer.get(), 1, n, file) != n;
    cursor = buffer.get();
    return !failed;
  }

 private:
  static constexpr std::size_t capacity = 1 << 20;
  static constexpr std::size_t slack = 64;  // the most one put adds
  void room() {
    if (cursor >= limit) flush();
  }

  std::FILE* file;
  std::unique_ptr<char[]> buffer;
  char* cursor = buffer.get();
  char* const limit = buffer.get() + capacity;
  bool failed = false;
};

int alignmentOf(sxEntry::VALUE kind) {
  switch (kind) {
    case sxEntry::VALUE_BYTE:
    case sxEntry::VALUE_SHORT:
    case sxEntry::VALUE_STRING:
    case sxEntry::VALUE_CHUNK:
      return 1;
    case sxEntry::VALUE_DOUBLE:
      return 8;
    default:
      return 4;
  }
}

// True when the values cover the data exactly as the writers place them,
// so that writing them again gives the same bytes.
bool coversData(const sxEntry& e, const std::vector<Recorder::Value>& values) {
  std::uint32_t at = 0;
  for (const Recorder::Value& v : values) {
    const std::uint32_t align = std::uint32_t(alignmentOf(v.kind));
    const std::uint32_t expected = (at + align - 1) & ~(align - 1);
    if (v.at != expected) return false;
    for (std::uint32_t k = at; k < expected; ++k)
      if (e.getData()[k]) return false;
    at = v.at + v.size;
  }
  return at == std::uint32_t(e.getDataSize());
}

// A name as written: bare when it is a plain word, quoted otherwise.
std::string nameToken(const char* name) {
  bool plain = name[0] && !(name[0] >= '0' && name[0] <= '9');
  for (const char* p = name; *p && plain; ++p)
    plain = (*p >= 'a' && *p <= 'z') || (*p >= 'A' && *p <= 'Z') || (*p >= '0' && *p <= '9') ||
            *p == '_' || *p == ':' || *p == '.';
  if (plain) return name;
  std::string quoted;
  quoted += '"';
  for (const char* p = name; *p; ++p) {
    if (*p == '"' || *p == '\\') quoted += '\\';
    quoted += *p;
  }
  quoted += '"';
  return quoted;
}

// Prints the entries of a written file.
class Printer {
 public:
  Printer(const sxFile& file, const Recorder& recorder, Out& out)
      : file(file), recorder(recorder), out(out) {}

  void header() {
    out.put("sxt ");
    out.number(sxText::formatVersion);
    out.put("\nentries ");
    out.number(file.getNumEntries());
    out.put("\ntags");
    for (int t = 0; t < file.getNumTags(); ++t) {
      tagNames.push_back(nameToken(file.getTagDesc(t)));
      const char* desc = file.getTagDesc(t);
      objectTag.push_back(std::strcmp(desc, "sxArray") != 0 && std::strcmp(desc, "sxPlugIns") != 0);
      out.put(' ');
      out.put(tagNames.back());
    }
    out.put('\n');
  }

  void entry(int n) {
    const sxEntry& e = *file.getEntry(n);
    out.put('@');
    out.number(n);
    out.put(' ');
    out.put(tagNames[std::size_t(e.getTag())]);
    out.put(' ');
    if (e.getVersion() != lastVersion || versionText.empty()) {
      lastVersion = e.getVersion();
      versionText = std::to_string(sxGetMajorVersion(lastVersion)) + '.' +
                    std::to_string(sxGetMinorVersion(lastVersion)) + '.' +
                    std::to_string(sxGetBuildVersion(lastVersion));
    }
    out.put(versionText);
    if (e.getCompression() == sxEntry::RUN_LENGTH)
      out.put(" rle");
    else if (e.getCompression() != sxEntry::NO_COMPRESSION) {
      out.put(" compression ");
      out.number(int(e.getCompression()));
    }
    out.put('\n');
    data = e.getData();
    recorder.valuesOf(n, values);
    if (e.getDataSize() < 1 || !data) return;
    if (!coversData(e, values)) {
      // Not the writers' layout (never the case for a written scene): the
      // bytes as they are.
      out.put("  chunk ");
      out.hexBytes(data, std::size_t(e.getDataSize()));
      out.put('\n');
      return;
    }
    std::size_t i = 0;
    if (objectTag[std::size_t(e.getTag())]) i = objectFields();
    while (i < values.size()) i = value(i);
  }

 private:
  template <class T>
  T load(const Recorder::Value& v, std::uint32_t offset = 0) const {
    T x;
    std::memcpy(&x, data + v.at + offset, sizeof x);
    return x;
  }
  bool isInt(std::size_t i) const {
    return i < values.size() && values[i].kind == sxEntry::VALUE_INT;
  }
  bool isString(std::size_t i, int size) const {
    return i < values.size() && values[i].kind == sxEntry::VALUE_STRING &&
           values[i].size == std::uint32_t(size) && data[values[i].at + values[i].size - 1] == 0;
  }
  // An int count followed by that many references.
  bool isRefList(std::size_t i) const {
    if (!isInt(i)) return false;
    const int count = load<int>(values[i]);
    if (count < 0 || std::size_t(count) > values.size() - i - 1) return false;
    for (int k = 1; k <= count; ++k)
      if (values[i + std::size_t(k)].kind != sxEntry::VALUE_REF) return false;
    return true;
  }

  void ref(int n) {
    if (n < 0) {
      out.put("none");
      return;
    }
    out.put('@');
    out.number(n);
  }
  // "keyword [@a @b]" for the count at i; the index after the list.
  std::size_t refList(std::string_view keyword, std::size_t i) {
    const int count = load<int>(values[i]);
    out.put(keyword);
    out.put(" [");
    for (int k = 1; k <= count; ++k) {
      if (k > 1) out.put(' ');
      ref(load<int>(values[i + std::size_t(k)]));
    }
    out.put("]\n");
    return i + std::size_t(count) + 1;
  }
  // "keyword "text"" for the length at i and the string after it.
  std::size_t text(std::string_view keyword, std::size_t i) {
    out.put(keyword);
    out.put(' ');
    const Recorder::Value& s = values[i + 1];
    out.quoted(data + s.at, s.size - 1);
    out.put('\n');
    return i + 2;
  }

  // The fields every object writes first: name, flags, attributes.
  std::size_t objectFields() {
    std::size_t i = 0;
    if (!isInt(i)) return i;
    const int length = load<int>(values[i]);
    if (length > 0 && isString(i + 1, length)) {
      i = text("  name", i);
    } else if (length == 0) {
      out.put("  name null\n");
      ++i;
    } else {
      return i;
    }
    if (i >= values.size() || values[i].kind != sxEntry::VALUE_SHORT) return i;
    out.put("  flags ");
    out.number(load<std::uint16_t>(values[i++]));
    out.put('\n');
    return isRefList(i) ? refList("  attributes", i) : i;
  }

  template <class T>
  void run(std::string_view keyword, const Recorder::Value& v) {
    out.put(keyword);
    out.put(" [");
    const std::uint32_t n = v.size / sizeof(T);
    for (std::uint32_t k = 0; k < n; ++k) {
      if (k > 0) out.put(k % valuesPerLine ? " " : "\n    ");
      if constexpr (std::is_same_v<T, float>)
        out.real<float, std::uint32_t>(load<float>(v, k * 4));
      else
        out.number(load<T>(v, k * 4));
    }
    out.put("]\n");
  }

  // The value at i, with the values that belong to it; the index after it.
  std::size_t value(std::size_t i) {
    const Recorder::Value& v = values[i];
    if (v.kind == sxEntry::VALUE_INT) {
      const int n = load<int>(v);
      if (n > 0 && isString(i + 1, n)) return text("  text", i);
      if (n > 0 && isRefList(i)) return refList("  refs", i);
    }
    switch (v.kind) {
      case sxEntry::VALUE_BYTE:
        out.put("  byte ");
        out.number(int(data[v.at]));
        break;
      case sxEntry::VALUE_SHORT:
        out.put("  short ");
        out.number(load<short>(v));
        break;
      case sxEntry::VALUE_INT:
        out.put("  int ");
        out.number(load<int>(v));
        break;
      case sxEntry::VALUE_BOOL: {
        const int b = load<int>(v);
        if (b == 0 || b == 1) {
          out.put(b ? "  bool true" : "  bool false");
        } else {
          out.put("  int ");
          out.number(b);
        }
        break;
      }
      case sxEntry::VALUE_FLOAT:
        out.put("  float ");
        out.real<float, std::uint32_t>(load<float>(v));
        break;
      case sxEntry::VALUE_DOUBLE:
        out.put("  double ");
        out.real<double, std::uint64_t>(load<double>(v));
        break;
      case sxEntry::VALUE_REF:
        out.put("  ref ");
        ref(load<int>(v));
        break;
      case sxEntry::VALUE_INTS:
        run<int>("  ints", v);
        return i + 1;
      case sxEntry::VALUE_FLOATS:
        run<float>("  floats", v);
        return i + 1;
      case sxEntry::VALUE_STRING:
        if (data[v.at + v.size - 1] == 0) {
          out.put("  string ");
          out.quoted(data + v.at, v.size - 1);
          break;
        }
        [[fallthrough]];
      default:
        out.put("  chunk ");
        out.hexBytes(data + v.at, v.size);
    }
    out.put('\n');
    return i + 1;
  }

  const sxFile& file;
  const Recorder& recorder;
  Out& out;
  std::vector<std::string> tagNames;
  std::vector<bool> objectTag;
  std::vector<Recorder::Value> values;
  const unsigned char* data = nullptr;
  unsigned lastVersion = 0;
  std::string versionText;
};

}  // namespace

bool sxText::print(const sxBase* root, std::FILE* out, std::string& error) {
  if (!root) {
    error = "no object to export";
    return false;
  }
  sxFile file;
  Recorder recorder;
  if (!file.createInMemory("text export")) {
    error = "out of memory";
    return false;
  }
  file.setObserver(&recorder);
  if (!root->write(&file, nullptr)) {
    error = "the root object could not be written";
    return false;
  }
  sxPlugIn::savePlugIns(&file);
  Out text(out);
  Printer printer(file, recorder, text);
  printer.header();
  for (int n = 0; n < file.getNumEntries(); ++n) {
    printer.entry(n);
    if ((n & 4095) == 4095) sxLoader::reportProgress(n + 1, file.getNumEntries());
  }
  if (!text.flush()) {
    error = "the file could not be written";
    return false;
  }
  return true;
}
