// Reading .sxt: the text is parsed into the entries of an in-memory scene
// file, each value encoded as the entry writers encode it, so that the file
// holds the bytes the binary writer would have made. Nothing is built until
// the whole text has been checked.

#include <sx/sxCore.h>

#include <array>
#include <charconv>
#include <climits>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "sxTextFormat.h"

namespace {

// Real scenes use a few dozen classes; the bound keeps the file's tag
// lookups cheap whatever a hostile text lists.
constexpr int maxTags = 4096;

// Character classes by table: the scanner looks at every byte of the text.
enum : unsigned char { SPACE = 1, WORD_END = 2 };
constexpr auto classes = [] {
  std::array<unsigned char, 256> t{};
  for (unsigned char c : {' ', '\n', '\t', '\r'}) t[c] = SPACE | WORD_END;
  for (unsigned char c : {'[', ']', '"'}) t[c] = WORD_END;
  return t;
}();
bool isSpace(char c) {
  return classes[static_cast<unsigned char>(c)] & SPACE;
}
bool endsWord(char c) {
  return classes[static_cast<unsigned char>(c)] & WORD_END;
}
int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

class Parser {
 public:
  Parser(const char* text, std::size_t size, sxFile& file, sxText::Error& error)
      : begin(text), p(text), end(text + size), file(file), error(error) {}

  bool run() {
    if (!header()) return false;
    while (skip(), p < end) {
      if (*p != '@') return fail(p, "expected an entry (@" + std::to_string(numEntries) + ")");
      if (!entry()) return false;
      // Parsing is most of a text import: it reports how far into the text.
      if ((numEntries & 4095) == 0) sxLoader::reportProgress(p - begin, end - begin);
    }
    if (numEntries < declared)
      return fail(p, "the file ends after " + std::to_string(numEntries) + " of " +
                         std::to_string(declared) + " entries");
    return classesKnown();
  }

 private:
  // --- tokens

  void skip() {
    while (p < end) {
      if (isSpace(*p)) {
        ++p;
      } else if (*p == '#') {
        while (p < end && *p != '\n') ++p;
      } else {
        break;
      }
    }
  }
  // The next word, or a single bracket; empty at the end or at a quote.
  std::string_view word() {
    skip();
    const char* start = p;
    if (p < end && (*p == '[' || *p == ']')) {
      ++p;
    } else {
      while (p < end && !endsWord(*p)) ++p;
    }
    return {start, std::size_t(p - start)};
  }
  std::string quote(std::string_view w) const {
    if (w.empty()) return p < end ? "'\"'" : "the end of the file";
    std::string s = "'";
    s.append(w.substr(0, 40));
    return s + "'";
  }
  bool expected(const char* what, std::string_view found) {
    return fail(found.empty() ? p : found.data(),
                std::string("expected ") + what + ", found " + quote(found));
  }

  template <class T>
  bool integer(std::string_view w, long long lo, long long hi, T& out, const char* what) {
    long long v = 0;
    auto r = std::from_chars(w.data(), w.data() + w.size(), v);
    if (w.empty() || r.ec != std::errc() || r.ptr != w.data() + w.size()) return expected(what, w);
    if (v < lo || v > hi) return fail(w.data(), quote(w) + " is out of range");
    out = T(v);
    return true;
  }
  template <class T>
  bool integer(long long lo, long long hi, T& out, const char* what) {
    return integer(word(), lo, hi, out, what);
  }
  template <class F, class Bits>
  bool real(std::string_view w, F& out) {
    if (w.size() > 4 && w.substr(0, 4) == "nan:") {
      Bits bits = 0;
      auto r = std::from_chars(w.data() + 4, w.data() + w.size(), bits, 16);
      if (r.ec != std::errc() || r.ptr != w.data() + w.size()) return expected("a number", w);
      std::memcpy(&out, &bits, sizeof out);
      return true;
    }
    auto r = std::from_chars(w.data(), w.data() + w.size(), out);
    if (w.empty() || r.ec != std::errc() || r.ptr != w.data() + w.size())
      return expected("a number", w);
    return true;
  }
  // "@N" below the announced count, or "none" (-1).
  bool reference(std::string_view w, int& out) {
    if (w == "none") {
      out = -1;
      return true;
    }
    if (w.size() < 2 || w[0] != '@') return expected("a reference (@N or none)", w);
    if (!integer(w.substr(1), 0, INT_MAX, out, "a reference (@N or none)")) return false;
    if (out >= declared)
      return fail(w.data(), "reference " + std::string(w) + " to no entry (there are " +
                                std::to_string(declared) + ")");
    return true;
  }
  // A quoted string, unescaped into bytes.
  bool string() {
    skip();
    const char* open = p;
    if (p >= end || *p != '"') return expected("a quoted string", word());
    bytes.clear();
    // Most strings have no escapes: taken whole.
    const char* q = p + 1;
    while (q < end && *q != '"' && *q != '\\' && *q != '\n') ++q;
    if (q < end && *q == '"') {
      bytes.assign(p + 1, q);
      p = q + 1;
      return true;
    }
    for (++p;; ++p) {
      if (p >= end || *p == '\n') return fail(open, "unterminated string");
      char c = *p;
      if (c == '"') break;
      if (c != '\\') {
        bytes.push_back(c);
        continue;
      }
      if (++p >= end) return fail(open, "unterminated string");
      switch (*p) {
        case 'n':
          bytes.push_back('\n');
          break;
        case 't':
          bytes.push_back('\t');
          break;
        case 'r':
          bytes.push_back('\r');
          break;
        case '"':
        case '\\':
          bytes.push_back(*p);
          break;
        case 'x': {
          int hi = p + 2 < end ? hexDigit(p[1]) : -1, lo = hi >= 0 ? hexDigit(p[2]) : -1;
          if (lo < 0) return fail(p - 1, "bad \\x escape: two hex digits expected");
          bytes.push_back(char(hi * 16 + lo));
          p += 2;
          break;
        }
        default:
          return fail(p - 1, "unknown escape \\" + std::string(1, *p));
      }
    }
    ++p;
    return true;
  }
  // A class name: a word or a quoted string.
  bool name(std::string& out) {
    skip();
    if (p < end && *p == '"') {
      if (!string()) return false;
      out = bytes;
    } else {
      std::string_view w = word();
      if (w.empty() || w[0] == '[' || w[0] == ']' || w[0] == '@')
        return expected("a class name", w);
      out = w;
    }
    if (out.empty() || out.size() >= std::size_t(sxFile::tagNameSize) ||
        out.find('\0') != std::string::npos)
      return fail(p - 1, "a class name has 1 to 63 characters");
    return true;
  }
  // "[" items "]": each item through item(word).
  template <class Item>
  bool list(Item item) {
    std::string_view w = word();
    if (w != "[") return expected("'['", w);
    for (;;) {
      w = word();
      if (w == "]") return true;
      if (w.empty() || w == "[") return fail(w.empty() ? p : w.data(), "unterminated list");
      if (!item(w)) return false;
    }
  }

  // --- structure

  bool header() {
    std::string_view w = word();
    if (w != "sxt") return expected("'sxt' and a format version", w);
    const char* at = p;
    int version = 0;
    if (!integer(0, INT_MAX, version, "a format version")) return false;
    if (version != sxText::formatVersion)
      return fail(at + 1, "format version " + std::to_string(version) + " is not supported");
    if ((w = word()) != "entries") return expected("'entries'", w);
    if (!integer(1, INT_MAX, declared, "the number of entries")) return false;
    if ((w = word()) != "tags") return expected("'tags'", w);
    for (skip(); p < end && *p != '@'; skip()) {
      const char* at = p;
      std::string tag;
      if (!name(tag)) return false;
      if (findTag(tag) >= 0) return fail(at, "class " + tag + " is listed twice");
      if (!addTag(tag)) return fail(at, "too many classes");
    }
    return true;
  }

  int findTag(std::string_view tag) const {
    auto it = tagIndex.find(tag);
    return it == tagIndex.end() ? -1 : it->second;
  }
  bool addTag(const std::string& tag) {
    if (int(tagNames.size()) >= maxTags) return false;
    const int t = file.newTag(tag.c_str());
    if (t != int(tagNames.size())) return false;
    tagNames.push_back(tag);
    tagIndex.emplace(tagNames.back(), t);
    tagUse.push_back(nullptr);
    return true;
  }

  bool entry() {
    std::string_view w = word();
    int number = -1;
    auto r = std::from_chars(w.data() + 1, w.data() + w.size(), number);
    if (r.ec != std::errc() || r.ptr != w.data() + w.size() || number != numEntries) {
      if (numEntries >= declared)
        return fail(w.data(), "more entries than the " + std::to_string(declared) + " announced");
      return fail(w.data(),
                  "expected entry @" + std::to_string(numEntries) + ", found " + quote(w));
    }
    skip();
    const char* classAt = p;
    int tag = lastTag;
    // Entries of one class often follow each other: the name is compared
    // before it is looked up.
    w = word();
    if (tag < 0 || w.empty() || w != tagNames[std::size_t(tag)]) {
      p = classAt;
      if (!name(className)) return false;
      tag = findTag(className);
      if (tag < 0) {
        // A hand edit may name a class that the tag list does not have yet.
        if (!addTag(className)) return fail(classAt, "too many classes");
        tag = int(tagNames.size()) - 1;
      }
      lastTag = tag;
    }
    if (!tagUse[std::size_t(tag)]) tagUse[std::size_t(tag)] = classAt;
    unsigned v = 0;
    if (!version(v)) return false;
    sxEntry* e = file.newEntry(tag);
    if (!e) return fail(classAt, "out of memory");
    e->setVersion(v);
    ++numEntries;
    data.clear();
    while (skip(), p < end && *p != '@') {
      w = word();
      if (w == "rle" && data.empty()) {
        e->setCompression(sxEntry::RUN_LENGTH);
      } else if (w == "compression" && data.empty()) {
        int c = 0;
        if (!integer(INT_MIN, INT_MAX, c, "a compression")) return false;
        e->setCompression(sxEntry::COMPRESSION(c));
      } else if (!value(w)) {
        return false;
      } else if (data.size() > std::size_t(INT_MAX / 2)) {
        return fail(w.data(), "the entry holds too much data");
      }
    }
    if (!data.empty()) {
      e->setData(data.data(), int(data.size()));
      if (e->getDataSize() != int(data.size())) return fail(classAt, "out of memory");
    }
    return true;
  }

  // --- the encoding of the entry writers: numbers in the machine's byte
  // order, ints, bools and floats at multiples of 4 from the start of the
  // data, doubles at multiples of 8, everything else where it falls; the
  // padding is zeros.

  void put(const void* v, std::size_t size, std::size_t align) {
    // An empty run writes nothing, not even its alignment.
    if (size == 0) return;
    const std::size_t at = (data.size() + align - 1) & ~(align - 1);
    data.resize(at + size);
    std::memcpy(data.data() + at, v, size);
  }
  template <class T>
  void put(T v) {
    put(&v, sizeof v, sizeof v < 4 ? 1 : sizeof v);
  }
  void putBytes(const std::string& b) { put(b.data(), b.size(), 1); }

  bool version(unsigned& out) {
    std::string_view w = word();
    if (!w.empty() && w == lastVersionText) {
      out = lastVersion;
      return true;
    }
    unsigned part[3] = {};
    const unsigned limit[3] = {255, 255, 65535};
    const char* q = w.data();
    const char* stop = w.data() + w.size();
    for (int k = 0; k < 3; ++k) {
      auto r = std::from_chars(q, stop, part[k]);
      if (r.ec != std::errc() || part[k] > limit[k] ||
          (k < 2 ? r.ptr == stop || *r.ptr != '.' : r.ptr != stop))
        return expected("a version (major.minor.build)", w);
      q = r.ptr + 1;
    }
    out = lastVersion = sxMakeVersion(part[0], part[1], part[2]);
    lastVersionText = w;
    return true;
  }

  bool value(std::string_view k) {
    if (k == "name" || k == "text") {
      skip();
      if (p < end && *p != '"') {
        std::string_view w = word();
        if (w != "null") return expected("a quoted string or null", w);
        put(0);
        return true;
      }
      if (!string()) return false;
      bytes.push_back('\0');
      put(int(bytes.size()));
      putBytes(bytes);
      return true;
    }
    if (k == "flags" || k == "short") {
      short v = 0;
      if (!integer(SHRT_MIN, USHRT_MAX, v, "a short")) return false;
      put(v);
      return true;
    }
    if (k == "attributes" || k == "refs") {
      ints.clear();
      if (!list([&](std::string_view w) {
            int r = 0;
            if (!reference(w, r)) return false;
            ints.push_back(r);
            return true;
          }))
        return false;
      put(int(ints.size()));
      put(ints.data(), ints.size() * 4, 4);
      return true;
    }
    if (k == "int") {
      int v = 0;
      if (!integer(INT_MIN, UINT_MAX, v, "an int")) return false;
      put(v);
      return true;
    }
    if (k == "ref") {
      int r = 0;
      if (!reference(word(), r)) return false;
      put(r);
      return true;
    }
    if (k == "float") {
      float v = 0;
      if (!real<float, std::uint32_t>(word(), v)) return false;
      put(v);
      return true;
    }
    if (k == "floats") {
      floats.clear();
      if (!list([&](std::string_view w) {
            float v = 0;
            if (!real<float, std::uint32_t>(w, v)) return false;
            floats.push_back(v);
            return true;
          }))
        return false;
      put(floats.data(), floats.size() * 4, 4);
      return true;
    }
    if (k == "ints") {
      ints.clear();
      if (!list([&](std::string_view w) {
            int v = 0;
            if (!integer(w, INT_MIN, UINT_MAX, v, "an int")) return false;
            ints.push_back(v);
            return true;
          }))
        return false;
      put(ints.data(), ints.size() * 4, 4);
      return true;
    }
    if (k == "double") {
      double v = 0;
      if (!real<double, std::uint64_t>(word(), v)) return false;
      put(v);
      return true;
    }
    if (k == "byte") {
      unsigned char v = 0;
      if (!integer(SCHAR_MIN, UCHAR_MAX, v, "a byte")) return false;
      put(v);
      return true;
    }
    if (k == "bool") {
      std::string_view w = word();
      if (w != "true" && w != "false") return expected("true or false", w);
      put(w == "true" ? 1 : 0);
      return true;
    }
    if (k == "string") {
      if (!string()) return false;
      bytes.push_back('\0');
      putBytes(bytes);
      return true;
    }
    if (k == "chunk") {
      std::string_view w = word();
      bytes.clear();
      for (std::size_t i = 0; i + 1 < w.size(); i += 2) {
        int hi = hexDigit(w[i]), lo = hexDigit(w[i + 1]);
        if (hi < 0 || lo < 0) break;
        bytes.push_back(char(hi * 16 + lo));
      }
      if (w.empty() || bytes.size() * 2 != w.size()) return expected("hex bytes", w);
      putBytes(bytes);
      return true;
    }
    return expected(
        "a value (name, flags, attributes, byte, short, int, bool, float, double, "
        "ref, refs, text, string, chunk, ints, floats)",
        k.empty() && p < end && *p == '"' ? std::string_view(p, 1) : k);
  }

  // Every class that an entry names must exist, once the plug-ins that the
  // text lists are loaded: a misspelt class would otherwise be dropped
  // silently with everything below it.
  bool classesKnown() {
    bool loaded = false;
    for (std::size_t t = 0; t < tagNames.size(); ++t) {
      const std::string& n = tagNames[t];
      if (!tagUse[t] || n == "sxArray" || n == "sxPlugIns" || sxType::findType(n.c_str())) continue;
      if (!loaded) {
        loaded = true;
        sxPlugIn::loadPlugIns(&file);
        if (sxType::findType(n.c_str())) continue;
      }
      return fail(tagUse[t], "unknown class " + n);
    }
    return true;
  }

  bool fail(const char* at, std::string what) {
    int line = 1;
    const char* lineStart = begin;
    for (const char* q = begin; q < at && q < end; ++q)
      if (*q == '\n') {
        ++line;
        lineStart = q + 1;
      }
    error.line = line;
    error.column = int(at - lineStart) + 1;
    error.what = std::move(what);
    return false;
  }

  const char* begin;
  const char* p;
  const char* end;
  sxFile& file;
  sxText::Error& error;
  int declared = 0;
  int numEntries = 0;
  std::deque<std::string> tagNames;
  std::unordered_map<std::string_view, int> tagIndex;
  std::vector<const char*> tagUse;  // where each class is first named by an entry
  std::string className;
  int lastTag = -1;
  unsigned lastVersion = 0;
  std::string_view lastVersionText;
  std::string bytes;
  std::vector<int> ints;
  std::vector<float> floats;
  std::vector<unsigned char> data;  // the entry being read
};

}  // namespace

bool sxText::parse(const char* text, std::size_t size, sxFile& file, Error& error) {
  Parser parser(text, size, file, error);
  return parser.run();
}
