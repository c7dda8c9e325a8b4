// sxtool: a command-line window onto the library.

#include <sx/sxCore.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "demo/sxDemoScene.h"
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
               "  dot FILE       write the node graph of FILE (any readable format) as\n"
               "                 Graphviz text to standard output; draw it with\n"
               "                 sxtool dot scene.sx | dot -Tsvg > scene.svg\n"
               "  convert IN OUT read IN and write it in the format of OUT's extension\n"
               "                 (.sx: a scene file; others: the loader modules'), with a\n"
               "                 progress bar on a terminal\n"
               "  plugins        list the loader modules found, their versions and\n"
               "                 extensions, and every directory searched for them\n"
               "  --help         print this text\n"
               "\n"
               "environment:\n"
               "  SX_REGISTRY_FILE   the settings store (default ~/.config/Solmax/registry)\n"
               "  SXCORE_MESSAGES    where library messages go: stdout, stderr, off. When it\n"
               "                     is unset, sxtool sends them to stderr, so that its\n"
               "                     standard output holds only what a command prints\n"
               "  SXCORE_DEBUG_PLUGINS=1  print each directory searched for plug-in\n"
               "                     modules, and why a module did not load, to stderr\n");
}

// The library reports on standard output, already while it is loaded,
// unless SXCORE_MESSAGES says otherwise: sxtool's output is data for other
// programs (sxtool dot | dot -Tsvg), so the library's messages go to
// stderr. The messages printed before main are still in stdout's buffer
// when it is no terminal: running the program again with the variable set
// drops them there and prints them to stderr. On a terminal they have been
// shown already; later ones go to stderr. Failing to re-run, it continues.
void keepStdoutForData(char** argv) {
  if (std::getenv("SXCORE_MESSAGES")) return;
  setenv("SXCORE_MESSAGES", "stderr", 1);
  if (!isatty(STDOUT_FILENO)) execv("/proc/self/exe", argv);
  sxSetMessageStream(SX_MESSAGES_STDERR);
}

}  // namespace

int main(int argc, char** argv) {
  keepStdoutForData(argv);
  sxInit(nullptr);
  // The demo's own node class, so that every command reads (and converts)
  // the demo's files whole.
  sxDemoInitClasses();
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
  } else if (std::strcmp(argv[1], "dot") == 0 && argc == 3) {
    result = sxToolDot(argv[2]);
  } else if (std::strcmp(argv[1], "convert") == 0 && argc == 4) {
    result = sxToolConvert(argv[2], argv[3]);
  } else if (std::strcmp(argv[1], "plugins") == 0 && argc == 2) {
    result = sxToolPlugins();
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
