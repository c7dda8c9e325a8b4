// sxtool convert and dot: a scene from any readable format to any writable
// one, through the loaders.

#include <sx/sxCore.h>

#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "sxTool.h"

namespace {

const char* orNone(const char* s) {
  return s && *s ? s : "-";
}

sxBase* importOrSay(const char* command, const char* path) {
  sxBase* root = sxLoader::importFile(path);
  // The loader's message names the file.
  if (!root) std::fprintf(stderr, "sxtool %s: %s\n", command, orNone(sxLoader::getErrorMessage()));
  return root;
}

// A bar on the terminal's standard error while a file is read or written;
// nothing when standard error is not a terminal. Ends its line when done.
class ProgressBar {
 public:
  explicit ProgressBar(const char* what) : what(what), shown(isatty(STDERR_FILENO) == 1) {
    if (shown) sxLoader::setProgressFunc(&ProgressBar::update, this);
  }
  ~ProgressBar() {
    sxLoader::setProgressFunc(nullptr, nullptr);
    if (drawn) std::fputs("\n", stderr);
  }
  // A bar that was drawn is shown full.
  void complete() {
    if (drawn) update(1.0, this);
  }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

 private:
  static void update(double done, void* user) {
    auto* bar = static_cast<ProgressBar*>(user);
    constexpr int width = 40;
    const int filled = int(done * width);
    if (bar->drawn && filled == bar->filled) return;
    bar->filled = filled;
    bar->drawn = true;
    std::fprintf(stderr, "\r%-9s [%.*s%*s] %3d%%", bar->what, filled,
                 "########################################", width - filled, "", int(done * 100));
    std::fflush(stderr);
  }
  const char* what;
  bool shown;
  bool drawn = false;
  int filled = -1;
};

}  // namespace

int sxToolConvert(const char* in, const char* out) {
  sxRef<sxBase> root;
  {
    ProgressBar bar("reading");
    root = importOrSay("convert", in);
    if (root) bar.complete();
  }
  if (!root) return 1;
  ProgressBar bar("writing");
  if (!sxLoader::exportFile(root.get(), out)) {
    std::fprintf(stderr, "sxtool convert: %s\n", orNone(sxLoader::getErrorMessage()));
    return 1;
  }
  bar.complete();
  return 0;
}

// The module writes files, replacing its target only when complete: the
// graph goes to a file in a private temporary folder, then to stdout.
int sxToolDot(const char* path) {
  sxRef<sxBase> root(importOrSay("dot", path));
  if (!root) return 1;
  const char* tmp = std::getenv("TMPDIR");
  std::string dir = std::string(tmp && *tmp ? tmp : "/tmp") + "/sxtool-dot.XXXXXX";
  if (!mkdtemp(dir.data())) {
    std::perror("sxtool dot: cannot make a temporary folder");
    return 1;
  }
  const std::string file = dir + "/graph.dot";
  int result = 0;
  if (!sxLoader::exportFile(root.get(), file.c_str())) {
    std::fprintf(stderr, "sxtool dot: %s\n", orNone(sxLoader::getErrorMessage()));
    result = 1;
  } else if (std::FILE* f = std::fopen(file.c_str(), "rb")) {
    char buffer[65536];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, f)) > 0;)
      if (std::fwrite(buffer, 1, n, stdout) != n) break;
    if (std::ferror(f) || std::fflush(stdout) != 0 || std::ferror(stdout)) {
      std::fputs("sxtool dot: the graph could not be copied to standard output\n", stderr);
      result = 1;
    }
    std::fclose(f);
  } else {
    std::perror("sxtool dot: cannot read the graph back");
    result = 1;
  }
  std::remove(file.c_str());
  rmdir(dir.c_str());
  return result;
}
