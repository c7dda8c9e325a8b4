// sxtool dump and tree: what a scene file holds, as tables and as a graph.

#include <sx/sxCore.h>

#include <cstdio>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "sxTool.h"

namespace {

const char* orNone(const char* s) {
  return s && *s ? s : "-";
}

}  // namespace

int sxToolDump(const char* path) {
  sxFile file;
  if (!path || !file.open(path, "r")) {
    std::fprintf(stderr, "sxtool dump: cannot read %s: %s\n", orNone(path),
                 orNone(file.getErrorMessage()));
    return 1;
  }
  std::printf("file:        %s\n", path);
  std::printf("version:     0x%08X\n", file.getVersion());
  std::printf("byte order:  %s\n", file.isByteSwapped() ? "swapped" : "native");
  std::printf("\ntags (%d):\n", file.getNumTags());
  for (int t = 0; t < file.getNumTags(); ++t)
    std::printf("  %4d  %s\n", t, orNone(file.getTagDesc(t)));
  std::printf("\ndirectory (%d entries):\n", file.getNumEntries());
  std::printf("  %6s  %4s  %-24s %10s  %11s  %10s\n", "entry", "tag", "class", "version",
              "compression", "bytes");
  for (int i = 0; i < file.getNumEntries(); ++i) {
    sxEntry* e = file.getEntry(i);
    if (!e) continue;
    const bool read = file.readEntry(e);
    std::printf("  %6d  %4d  %-24s 0x%08X  %11d  %10s\n", i, e->getTag(),
                orNone(file.getTagDesc(e->getTag())), e->getVersion(), int(e->getCompression()),
                read ? std::to_string(e->getDataSize()).c_str() : "unreadable");
  }
  return 0;
}

// Depth first, children in order; a shared instance is shown in full the
// first time and named again at its later places.
int sxToolTree(const char* path) {
  sxRef<sxBase> root(path ? sxLoader::importFile(path) : nullptr);
  if (!root) {
    // The loader's message names the file.
    std::fprintf(stderr, "sxtool tree: %s\n", orNone(sxLoader::getErrorMessage()));
    return 1;
  }
  if (!root->isOfType(sxGroup::getClassType())) {
    std::printf("%s \"%s\" (not a node)\n", root->getType()->getName(), orNone(root->getName()));
    return 0;
  }
  std::unordered_set<const sxGroup*> shown;
  std::vector<std::pair<const sxGroup*, int>> todo{{static_cast<sxGroup*>(root.get()), 0}};
  while (!todo.empty()) {
    auto [g, depth] = todo.back();
    todo.pop_back();
    const bool again = !shown.insert(g).second;
    std::printf("%*s%s \"%s\" flags 0x%04X", depth * 2, "", g->getType()->getName(),
                orNone(g->getName()), g->getTravFlags());
    if (g->getNumParents() > 1) std::printf(" shared by %d parents", g->getNumParents());
    std::printf("%s\n", again ? " (shown above)" : "");
    if (again) continue;
    for (int i = g->getNumChildren() - 1; i >= 0; --i) todo.emplace_back(g->getChild(i), depth + 1);
  }
  return 0;
}
