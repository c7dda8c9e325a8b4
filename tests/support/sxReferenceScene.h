#pragma once

#include <bit>
#include <string>

// Reference files for byte-order tests, written on one machine and checked
// on any other: every value is known, so the checker needs only the file.
// The primitive file holds every primitive of sxEntry and a run-length
// encoded entry; the scene an exported graph with sharing, a cycle, a
// self-reference and an array of each element type (one of them shared);
// the math file one value of each mathematical type.
namespace sxReference {

bool writePrimitiveFile(const char* path);
bool writeSceneFile(const char* path);
bool writeMathFile(const char* path);

// Each check appends one line per failure to report and returns their number;
// swapped tells whether the file came from a machine of the other byte order.
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
