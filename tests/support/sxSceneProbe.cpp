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
  const std::string dir = std::string(argv[2]) + "/";
  std::printf("machine: %s-endian\n", sxReference::isBigEndian() ? "big" : "little");
  if (std::strcmp(argv[1], "write") == 0) {
    bool ok = true;
    for (const auto& file : sxReference::files) ok = ok && file.write((dir + file.name).c_str());
    std::printf("%s\n", ok ? "written" : "writing failed");
    return ok ? 0 : 1;
  }
  if (std::strcmp(argv[1], "check") != 0) return 2;
  const bool wantSwapped = argc > 3 && std::strcmp(argv[3], "expect-swapped") == 0;
  std::string report;
  int failures = 0;
  bool wrongOrder = false, sceneSwapped = false;
  for (const auto& file : sxReference::files) {
    bool swapped = false;
    failures += file.check((dir + file.name).c_str(), swapped, report);
    wrongOrder = wrongOrder || (argc > 3 && swapped != wantSwapped);
    if (file.check == sxReference::checkSceneFile) sceneSwapped = swapped;
  }
  if (wrongOrder) {
    report += "byte order of the files is not the expected one\n";
    ++failures;
  }
  std::printf("files are %s\n", sceneSwapped ? "byte-swapped" : "native");
  std::fputs(report.c_str(), stdout);
  std::printf("%d failure(s)\n", failures);
  return failures == 0 ? 0 : 1;
}
