#pragma once

// The .sxt text scene format: a typed rendering of a scene file's entries.
//
//   sxt 1
//   entries 3
//   tags sxGroup sxPlugIns
//   @0 sxGroup 1.4.0
//     name "root"
//     flags 0
//     attributes []
//     short 0
//     short 0
//     refs [@1]
//   @1 sxGroup 1.4.0
//   ...
//
// Each entry is its directory number, its class (tag), its version and
// "rle" when it is stored run-length encoded, then its values in the order
// the class wrote them, one keyword and one value each:
//   byte N, short N, int N, bool true|false, float F, double D,
//   ref @N | ref none, string "...", chunk HEX, ints [...], floats [...],
//   text "..." | text null  (an int length with the NUL, then the string),
//   refs [@N ...]           (an int count, then the references).
// An object's entry starts with its name (text), flags (short) and
// attributes (refs). Floats are the shortest text that reads back exactly;
// a NaN is written as its bits, e.g. float nan:7fc00000. A token that
// starts with '#' begins a comment, to the end of the line. Reading re-encodes every value as the
// writers do, alignment included, so binary -> text -> binary is byte-identical.

#include <cstddef>
#include <cstdio>
#include <string>

class sxBase;
class sxFile;

namespace sxText {

inline constexpr int formatVersion = 1;

struct Error {
  int line = 0, column = 0;  // 1-based; 0 when the error has no place
  std::string what;
};

/// Parses text into the entries of file, which must be a fresh in-memory
/// file. Validates the syntax, the entry numbers and count, the references
/// and the classes (loading the plug-ins the text names). False with error
/// set; then the file holds partial entries and the caller closes it.
bool parse(const char* text, std::size_t size, sxFile& file, Error& error);

/// Writes root, everything it refers to and the plug-in list to out. False
/// when root cannot be written or out fails (error says which).
bool print(const sxBase* root, std::FILE* out, std::string& error);

}  // namespace sxText
