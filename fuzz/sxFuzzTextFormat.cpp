// Reads arbitrary bytes as .sxt text: parses them into an in-memory scene
// file and, when the text is accepted, reads the scene and writes it out
// again as text. The only acceptable outcomes are errors and null results.

#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>
#include <sx/persist/sxFile.h>
#include <sx/persist/sxLoader.h>
#include "sxFuzzLeftovers.h"

#include <cstdint>
#include <cstdio>
#include <string>

#include "sxTextFormat.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::unordered_set<sxBase*> before = sxfuzz::liveObjects();
  {
    sxFile file;
    sxText::Error error;
    sxRef<sxBase> root;
    if (file.createInMemory("fuzz.sxt") &&
        sxText::parse(reinterpret_cast<const char*>(data), size, file, error))
      root = sxLoader::readScene(file, "fuzz.sxt");
    file.close();
    if (root) {
      static std::FILE* sink = std::fopen("/dev/null", "wb");
      std::string message;
      sxText::print(root.get(), sink, message);
    }
  }
  sxfuzz::checkLeftovers(before);
  return 0;
}
