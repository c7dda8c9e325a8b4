#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <map>
#include <string>

#include "support/sxThroughFile.h"
#include "sxDemoRun.h"
#include "sxDemoScene.h"

namespace {

// Node count per class over every node reachable from root, shared nodes
// once.
std::map<std::string, int> census(const sxDemoParts& p) {
  return {{"nodes", p.nodes},
          {"transforms", int(p.transforms.size())},
          {"range switches", int(p.rangeSwitches.size())},
          {"switches", int(p.switches.size())},
          {"billboards", int(p.billboards.size())},
          {"emitters", int(p.emitters.size())},
          {"toggles", int(p.toggles.size())}};
}

}  // namespace

// The sample scene runs, survives a file mid-run with every node kind in
// it, and the copy runs on as the original does: the same nodes visited
// from the same viewpoint, emitters and switches driven alike.
TEST(sxDemoScene, RunsAndRunsOnAfterAFile) {
  sxDemoConfig config;
  config.objects = 200;
  // Fades run on the real clock: one ending between the two runs' frames
  // would make them differ for a frame.
  config.fadeSeconds = 0.0f;
  sxDemoParts built;
  ASSERT_TRUE(built.find(sxBuildDemoScene(config).get()));
  sxDemoFrame last;
  {
    sxDemoRunner runner(built, config);
    for (int i = 0; i < 40; ++i) last = runner.step();
  }
  EXPECT_GT(last.visited, 0);
  EXPECT_GT(last.playing, 0);
  EXPECT_LT(last.playing, int(built.emitters.size()));

  sxRef<sxScene> back = sxThroughFile<sxScene>(built.scene.get());
  ASSERT_TRUE(back);
  sxDemoParts loaded;
  loaded.find(back.get());
  EXPECT_EQ(census(loaded), census(built));

  // Both run the same next frames from the same state.
  sxDemoRunner a(built, config), b(loaded, config);
  for (int i = 0; i < 40; ++i) {
    const sxDemoFrame fa = a.step(), fb = b.step();
    ASSERT_EQ(fa.visited, fb.visited) << "frame " << i;
    ASSERT_EQ(fa.culled, fb.culled) << "frame " << i;
    ASSERT_EQ(fa.playing, fb.playing) << "frame " << i;
  }
}
