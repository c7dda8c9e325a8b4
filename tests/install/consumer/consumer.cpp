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
  g->unRef();
  sxShutdown();
  return 0;
}
