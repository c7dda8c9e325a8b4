// Writes the reference files into a directory, or checks the ones found
// there, so that files written on a machine of one byte order can be read
// on one of the other.
//
//     sxSceneProbe write DIR
//     sxSceneProbe check DIR [expect-swapped|expect-native]

#include <cstdio>
#include <cstring>
#include <string>

#include "support/sxReferenceScene.h"

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s write|check DIR [expect-swapped|expect-native]\n", argv[0]);
    return 2;
  }
  std::string dir = argv[2];
  std::string primitives = dir + "/" + sxReference::primitiveFileName;
  std::string scene = dir + "/" + sxReference::sceneFileName;
  std::string math = dir + "/" + sxReference::mathFileName;
  std::printf("machine: %s-endian\n", sxReference::isBigEndian() ? "big" : "little");
  if (std::strcmp(argv[1], "write") == 0) {
    bool ok = sxReference::writePrimitiveFile(primitives.c_str()) &&
              sxReference::writeSceneFile(scene.c_str()) &&
              sxReference::writeMathFile(math.c_str());
    std::printf("%s\n", ok ? "written" : "writing failed");
    return ok ? 0 : 1;
  }
  if (std::strcmp(argv[1], "check") != 0) return 2;
  std::string report;
  bool swappedPrimitives = false, swappedScene = false, swappedMath = false;
  int failures = sxReference::checkPrimitiveFile(primitives.c_str(), swappedPrimitives, report) +
                 sxReference::checkSceneFile(scene.c_str(), swappedScene, report) +
                 sxReference::checkMathFile(math.c_str(), swappedMath, report);
  if (argc > 3) {
    bool wantSwapped = std::strcmp(argv[3], "expect-swapped") == 0;
    if (swappedPrimitives != wantSwapped || swappedScene != wantSwapped ||
        swappedMath != wantSwapped) {
      report += "byte order of the files is not the expected one\n";
      ++failures;
    }
  }
  std::printf("files are %s\n", swappedScene ? "byte-swapped" : "native");
  std::fputs(report.c_str(), stdout);
  std::printf("%d failure(s)\n", failures);
  return failures == 0 ? 0 : 1;
}
