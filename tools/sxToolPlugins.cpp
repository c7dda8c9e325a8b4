// sxtool plugins: the loader modules found, what they read and write, and
// where the library looked.

#include <sx/sxCore.h>

#include <cstdio>
#include <string>
#include <vector>

#include "sxTool.h"

namespace {

const char* orNone(const char* s) {
  return s && *s ? s : "-";
}

}  // namespace

int sxToolPlugins() {
  // A rescan with the diagnostics collected: it registers nothing twice.
  std::vector<std::string> trace;
  sxSetPlugInTrace(
      [](const char* line, void* user) {
        static_cast<std::vector<std::string>*>(user)->push_back(line);
      },
      &trace);
  sxLoader::initLoaders();
  sxSetPlugInTrace(nullptr, nullptr);

  std::printf("plug-in directory: %s\n", orNone(sxGetPlugInDirectory()));
  std::printf("\nloader modules (%d):\n", sxLoader::getNumLoaders());
  for (int i = 0; i < sxLoader::getNumLoaders(); ++i) {
    const char* module = sxLoader::getLoaderName(i);
    // Wrapped to lines of about 76 columns.
    std::string extensions, line;
    for (int e = 0; e < sxLoader::getNumLoaderExtensions(i); ++e) {
      const std::string ext = std::string(".") + sxLoader::getLoaderExtension(i, e);
      if (!line.empty() && line.size() + ext.size() > 58) {
        (extensions += line) += ",\n                ";
        line.clear();
      } else if (!line.empty()) {
        line += ", ";
      }
      line += ext;
    }
    extensions += line;
    std::printf("  %s\n    extensions: %s\n", module, orNone(extensions.c_str()));
    if (const sxPlugIn* p = sxPlugIn::load(module))
      std::printf("    name:       %s\n    company:    %s\n    release:    %d.%d.%d of %s\n",
                  orNone(p->getName()), orNone(p->getCompany()), p->getMajor(), p->getMinor(),
                  p->getBuild(), orNone(p->getDate()));
    else
      std::printf("    (cannot be loaded now)\n");
    sxPlugIn::unloadAll();
  }

  std::printf("\nplug-in records (%d):\n", sxPlugIn::getNum());
  for (int i = 0; i < sxPlugIn::getNum(); ++i)
    if (const sxPlugIn* p = sxPlugIn::get(i))
      std::printf("  %-24s %-20s %d.%d.%d\n", orNone(p->getModuleName()), orNone(p->getName()),
                  p->getMajor(), p->getMinor(), p->getBuild());

  std::printf("\nsearch (directories tried, modules found):\n");
  for (const std::string& line : trace) std::printf("  %s\n", line.c_str());
  return 0;
}
