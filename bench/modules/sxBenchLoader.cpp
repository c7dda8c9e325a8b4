// One of the ten small loader modules that the discovery benchmark finds.
// Each copy is built with its own SX_BENCH_MODULE name and extension.

#include <sx/persist/sxLoader.h>

namespace {

class sxBenchLoader : public sxLoader {
 public:
  sxBenchLoader() : sxLoader(SX_BENCH_MODULE) {
    setName("Discovery benchmark");
    setRelease(1, 0, 0, "2026-11-24");
    addExtension(SX_BENCH_EXTENSION);
  }
  sxBase* import(const char*) override { return nullptr; }
};

sxBenchLoader theLoader;

}  // namespace
