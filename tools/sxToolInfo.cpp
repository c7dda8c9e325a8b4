// sxtool info: the library, its settings and its class tree.

#include <sx/sxCore.h>

#include <cstdio>
#include <cstring>

#include "sxTool.h"

namespace {

void printVersion(const char* label, unsigned v) {
  std::printf("%s%u.%u.%u (0x%08X)\n", label, sxGetMajorVersion(v), sxGetMinorVersion(v),
              sxGetBuildVersion(v), v);
}

void printPlugIn(const sxPlugIn* p) {
  std::printf("  name:      %s\n", p->getName() ? p->getName() : "(none)");
  std::printf("  company:   %s\n", p->getCompany() ? p->getCompany() : "(none)");
  std::printf("  module:    %s\n", p->getModuleName() ? p->getModuleName() : "(none)");
  std::printf("  release:   %d.%d.%d of %s\n", p->getMajor(), p->getMinor(), p->getBuild(),
              p->getDate() ? p->getDate() : "(no date)");
  std::printf("  types:     %d\n", p->getNumTypes());
  std::printf("  saved with files: %s\n", p->isSaveWithFileEnabled() ? "yes" : "no");
}

void printTypeTree(const sxType* t, int depth) {
  const sxType* parent = t->getParent();
  std::printf("  %*s%-*s parent %-14s record %-17s created  instances %d\n", depth * 2, "",
              28 - depth * 2, t->getName(), parent ? parent->getName() : "-",
              t->getRecordClassName(), t->getNum(false));
  for (int i = 0; i < t->getNumChildren(); ++i) printTypeTree(t->getChild(i), depth + 1);
}

}  // namespace

int sxToolInfo(bool all) {
  if (all) sxType::initAllRegisteredClasses();
  printVersion("library version: ", sxGetVersion());
  std::printf("signature:       %s\n", sxGetSignature());
  std::printf("plug-in dir:     %s\n", sxGetPlugInDirectory());
  std::printf("\nkernel plug-in record:\n");
  for (int i = 0; i < sxPlugIn::getNum(); ++i) {
    const sxPlugIn* p = sxPlugIn::get(i);
    if (p && p->getName() && std::strcmp(p->getName(), "Kernel") == 0) printPlugIn(p);
  }
  std::printf("\nsettings read at load time:\n");
  std::printf("  NumTextureUnits: %d\n", sxGetNumTextureUnits());
  std::printf("\nfile search path (%d entries):\n", sxGetNumFilePaths());
  for (int i = 0; i < sxGetNumFilePaths(); ++i) std::printf("  %s\n", sxGetFilePath(i));

  int types = sxType::getNumTypes();
  int announced = sxType::getNumRegisteredClasses();
  std::printf("\nclass tree (%d created, %d announced):\n", types, announced);
  for (int i = 0; i < types; ++i)
    if (const sxType* t = sxType::getType(i); t && !t->getParent()) printTypeTree(t, 0);
  if (announced) {
    std::printf("\nannounced, created on first use:\n");
    for (int i = 0; i < announced; ++i)
      std::printf("  %-28s announced  instances 0\n", sxType::getRegisteredClassName(i));
  }
  return 0;
}
