// A minimal application of the installed library.
#include <sx/sxCore.h>

#include <cstdio>

int main() {
  sxInit(nullptr);
  sxBase* g = sxType::createInstance("SXGROUP");
  if (!g) return 1;
  g->ref();
  std::printf("consumer: %s %d\n", g->getType()->getName(), sxGroup::getNum(false));
  g->unRef();
  sxShutdown();
  return 0;
}
