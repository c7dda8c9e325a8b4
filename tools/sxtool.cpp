// sxtool: a command-line window onto the library.

#include <sx/sxCore.h>

#include <cstdio>
#include <cstring>

#include "sxTool.h"

namespace {

void usage(std::FILE* out) {
  std::fprintf(out,
               "usage: sxtool <command> [options]\n"
               "\n"
               "commands:\n"
               "  info [--all]   print the library version and signature, the plug-in\n"
               "                 directory, the kernel's plug-in record, the settings read\n"
               "                 at load time, the file search path and the class tree\n"
               "                 read from the type registry. Classes that are only\n"
               "                 announced get their record on first use; --all creates\n"
               "                 every record first.\n"
               "  demo [--frames N] [--objects N] [--save FILE] [--load FILE]\n"
               "                 build the sample scene (N moving objects, default 3000)\n"
               "                 or read one, run N frames (default 600) of its update and\n"
               "                 of a culling camera pass from a moving viewpoint, and print\n"
               "                 per-frame costs and counts; --save writes the scene first\n"
               "  dump FILE      print a scene file's header, tag table and directory\n"
               "  tree FILE      print the node hierarchy of a scene file, indented, with\n"
               "                 class, name and traversal flags\n"
               "  --help         print this text\n"
               "\n"
               "environment:\n"
               "  SX_REGISTRY_FILE   the settings store (default ~/.config/Solmax/registry)\n"
               "  SXCORE_MESSAGES    where library messages go: stdout (default), stderr, off\n");
}

}  // namespace

int main(int argc, char** argv) {
  sxInit(nullptr);
  int result = 0;
  if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0) {
    usage(argc < 2 ? stderr : stdout);
    result = argc < 2 ? 2 : 0;
  } else if (std::strcmp(argv[1], "info") == 0) {
    bool all = argc > 2 && std::strcmp(argv[2], "--all") == 0;
    result = sxToolInfo(all);
  } else if (std::strcmp(argv[1], "dump") == 0 && argc == 3) {
    result = sxToolDump(argv[2]);
  } else if (std::strcmp(argv[1], "tree") == 0 && argc == 3) {
    result = sxToolTree(argv[2]);
  } else if (std::strcmp(argv[1], "demo") == 0) {
    result = sxToolDemo(argc, argv);
  } else {
    std::fprintf(stderr, "sxtool: unknown command '%s'\n\n", argv[1]);
    usage(stderr);
    result = 2;
  }
  sxShutdown();
  return result;
}
