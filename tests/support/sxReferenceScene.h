#pragma once

#include <bit>
#include <string>

// Reference files for byte-order tests. One machine writes them, any other
// machine checks them: every value is a known function of its position, so
// the checker needs nothing from the writer but the file. The primitive
// file holds every primitive of sxEntry and a run-length encoded entry; the
// scene file is an exported graph of named objects with attributes,
// sharing, a cycle, a self-reference and one array of each of the nine
// element types (one of them shared); the math file holds one value of
// each mathematical type, each written by its own write.
namespace sxReference {

bool writePrimitiveFile(const char* path);
bool writeSceneFile(const char* path);
bool writeMathFile(const char* path);

// Each check appends one line per failure to report and returns the number
// of failures. swapped receives whether the file came from a machine of the
// other byte order.
int checkPrimitiveFile(const char* path, bool& swapped, std::string& report);
int checkSceneFile(const char* path, bool& swapped, std::string& report);
int checkMathFile(const char* path, bool& swapped, std::string& report);

// The files by name, in the order they are written and checked.
struct File {
  const char* name;
  bool (*write)(const char* path);
  int (*check)(const char* path, bool& swapped, std::string& report);
};
inline constexpr File files[] = {{"primitives.sxp", writePrimitiveFile, checkPrimitiveFile},
                                 {"scene.sx", writeSceneFile, checkSceneFile},
                                 {"math.sxp", writeMathFile, checkMathFile}};

inline bool isBigEndian() {
  return std::endian::native == std::endian::big;
}

}  // namespace sxReference
