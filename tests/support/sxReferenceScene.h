#pragma once

#include <string>

// Reference files for byte-order tests. One machine writes them, any other
// machine checks them: every value is a known function of its position, so
// the checker needs nothing from the writer but the file.
//
// The primitive file holds one entry with every primitive of sxEntry and a
// run-length encoded entry; the scene file is an exported graph of named
// objects with attributes, sharing, a cycle, a self-reference and one array
// of each of the nine element types (one of them shared); the math file
// holds one entry with a value of each mathematical type, each written by
// its own write.
namespace sxReference {

constexpr const char* primitiveFileName = "primitives.sxp";
constexpr const char* sceneFileName = "scene.sx";
constexpr const char* mathFileName = "math.sxp";

bool writePrimitiveFile(const char* path);
bool writeSceneFile(const char* path);
bool writeMathFile(const char* path);

// Each check appends one line per failure to report and returns the number
// of failures. swapped receives whether the file came from a machine of the
// other byte order.
int checkPrimitiveFile(const char* path, bool& swapped, std::string& report);
int checkSceneFile(const char* path, bool& swapped, std::string& report);
int checkMathFile(const char* path, bool& swapped, std::string& report);

// Whether this machine stores numbers big-end first.
bool isBigEndian();

}  // namespace sxReference
