// A minimal application of the library, installed or built as a sub-project.
#include <sx/sxCore.h>

#include <cstdio>

int main() {
  sxInit(nullptr);
  sxBase* g = sxType::createInstance("SXGROUP");
  if (!g) return 1;
  g->ref();
  std::printf("consumer: %s %d\n", g->getType()->getName(), sxGroup::getNum(false));
  std::printf("plug-in directory: %s\n", sxGetPlugInDirectory());
  // The installed loader modules are found beside the library, and work.
  for (int i = 0; i < sxLoader::getNumLoaders(); ++i)
    std::printf("loader: %s\n", sxLoader::getLoaderName(i));
  g->setName("round trip");
  if (sxLoader::exportFile(g, "consumer-check.sxt")) {
    sxBase* back = sxLoader::importFile("consumer-check.sxt");
    if (back) back->ref();
    std::printf("text round trip: %s\n", back && back->getName() ? back->getName() : "failed");
    if (back) back->unRef();
    std::remove("consumer-check.sxt");
  }
  g->unRef();
  sxShutdown();
  return 0;
}
