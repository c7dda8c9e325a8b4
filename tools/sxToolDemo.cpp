// sxtool demo: builds (or loads) the sample scene, runs it frame by frame
// and prints one table of what the frames did and cost.

#include <sx/sxCore.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "sxDemoRun.h"
#include "sxDemoScene.h"
#include "sxTool.h"

namespace {

const char* loaderMessage() {
  const char* m = sxLoader::getErrorMessage();
  return m && *m ? m : "unknown error";
}

struct Options {
  int frames = 600;
  int objects = 3000;
  const char* save = nullptr;
  const char* load = nullptr;
};

bool parseCount(const char* text, int low, int high, int& out) {
  if (!text) return false;
  char* end = nullptr;
  const long v = std::strtol(text, &end, 10);
  if (end == text || *end || v < low || v > high) return false;
  out = int(v);
  return true;
}

// Returns 0 on success, else the exit status after printing why.
int parse(int argc, char** argv, Options& o) {
  for (int i = 2; i < argc; ++i) {
    const char* a = argv[i];
    const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
    if (std::strcmp(a, "--frames") == 0 && parseCount(value, 1, 10000000, o.frames)) {
      ++i;
    } else if (std::strcmp(a, "--objects") == 0 && parseCount(value, 1, 1000000, o.objects)) {
      ++i;
    } else if (std::strcmp(a, "--save") == 0 && value) {
      o.save = value;
      ++i;
    } else if (std::strcmp(a, "--load") == 0 && value) {
      o.load = value;
      ++i;
    } else {
      std::fprintf(stderr,
                   "sxtool demo: bad option '%s'\n"
                   "usage: sxtool demo [--frames N] [--objects N] [--save FILE] [--load FILE]\n",
                   a);
      return 2;
    }
  }
  return 0;
}

sxRef<sxScene> loadScene(const char* path) {
  sxDemoInitClasses();
  sxRef<sxBase> root(sxLoader::importFile(path));
  if (!root) {
    std::fprintf(stderr, "sxtool demo: cannot read %s: %s\n", path, loaderMessage());
    return nullptr;
  }
  if (!root->isOfType(sxScene::getClassType())) {
    std::fprintf(stderr, "sxtool demo: %s holds a %s, not a scene\n", path,
                 root->getType()->getName());
    return nullptr;
  }
  return sxRef<sxScene>(static_cast<sxScene*>(root.get()));
}

void progress(int done, int total) {
  const int width = 40;
  const int filled = int(long(done) * width / total);
  std::fprintf(stderr, "\r  [%.*s%*s] %d/%d frames", filled,
               "########################################", width - filled, "", done, total);
  if (done == total) std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
}

double percentile(std::vector<double> v, double p) {
  if (v.empty()) return 0.0;
  std::sort(v.begin(), v.end());
  const std::size_t i = std::min(v.size() - 1, std::size_t(p * double(v.size() - 1) + 0.5));
  return v[i];
}

template <class F>
std::vector<double> column(const std::vector<sxDemoFrame>& frames, F f) {
  std::vector<double> out;
  out.reserve(frames.size());
  for (const sxDemoFrame& fr : frames) out.push_back(double(f(fr)));
  return out;
}

void printTable(const sxDemoParts& parts, const std::vector<sxDemoFrame>& frames) {
  std::printf(
      "scene: %d nodes, %zu transforms, %zu range switches, %zu switches, "
      "%zu billboards, %zu emitters, %zu action nodes\n",
      parts.nodes, parts.transforms.size(), parts.rangeSwitches.size(), parts.switches.size(),
      parts.billboards.size(), parts.emitters.size(), parts.toggles.size());
  std::printf("%zu frames\n\n", frames.size());
  std::printf("%-28s %12s %12s %12s\n", "per frame", "median", "p99", "max");
  struct Row {
    const char* name;
    std::vector<double> values;
    const char* format;
  };
  const Row rows[] = {
      {"frame time (ms)", column(frames, [](auto& f) { return f.totalMs(); }), "%12.3f"},
      {"  update (ms)", column(frames, [](auto& f) { return f.updateMs; }), "%12.3f"},
      {"  camera pass (ms)", column(frames, [](auto& f) { return f.cameraMs; }), "%12.3f"},
      {"  listener pass (ms)", column(frames, [](auto& f) { return f.listenerMs; }), "%12.3f"},
      {"nodes visited", column(frames, [](auto& f) { return f.visited; }), "%12.0f"},
      {"sub-graphs culled", column(frames, [](auto& f) { return f.culled; }), "%12.0f"},
      {"switches changed", column(frames, [](auto& f) { return f.switchChanges; }), "%12.0f"},
      {"emitters playing", column(frames, [](auto& f) { return f.playing; }), "%12.0f"},
  };
  for (const Row& r : rows) {
    std::printf("%-28s", r.name);
    for (double p : {0.5, 0.99, 1.0}) std::printf(r.format, percentile(r.values, p));
    std::printf("\n");
  }
  long long changes = 0;
  for (const sxDemoFrame& f : frames) changes += f.switchChanges;
  std::printf("\nswitch changes in all: %lld\n", changes);
}

}  // namespace

int sxToolDemo(int argc, char** argv) {
  Options o;
  if (int status = parse(argc, argv, o)) return status;
  sxDemoConfig config;
  config.objects = o.objects;
  sxRef<sxScene> scene = o.load ? loadScene(o.load) : sxBuildDemoScene(config);
  if (!scene) return 1;
  if (o.save && !sxLoader::exportFile(scene.get(), o.save)) {
    std::fprintf(stderr, "sxtool demo: cannot write %s: %s\n", o.save, loaderMessage());
    return 1;
  }
  sxDemoParts parts;
  parts.find(scene.get());
  std::vector<sxDemoFrame> frames;
  frames.reserve(std::size_t(o.frames));
  const bool tty = isatty(fileno(stderr));
  {
    sxDemoRunner runner(parts, config);
    for (int i = 0; i < o.frames; ++i) {
      frames.push_back(runner.step());
      if (tty && (i % 10 == 9 || i + 1 == o.frames)) progress(i + 1, o.frames);
    }
  }
  if (o.save) std::printf("saved to %s\n", o.save);
  printTable(parts, frames);
  return 0;
}
