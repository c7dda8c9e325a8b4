// Several threads import and export at once while another edits the file
// search path and the save directory; each sees its own error result.

#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/sxTestFiles.h"

TEST(ConcurrentLoad, ImportsAndExportsWhileThePathChanges) {
  sxTempDir dir;
  const std::string scenes = dir.path + "/scenes";
  std::filesystem::create_directory(scenes);
  sxRef<sxGroup> scene(new sxGroup);
  scene->setName("found");
  ASSERT_TRUE(sxLoader::exportFile(scene.get(), (scenes + "/scene.sx").c_str()));
  sxDeleteFilePaths();
  sxAddFilePath(scenes.c_str());
  sxLoader::setSaveDirectory(dir.path.c_str());
  std::atomic<bool> stop{false};
  std::atomic<int> found{0}, wrong{0};
  std::thread editor([&] {
    for (int i = 0; !stop.load(); ++i) {
      sxAddFilePaths((dir.path + "/a;" + dir.path + "/b").c_str());
      if (i % 4 == 0) sxDeleteFilePaths();
      sxAddFilePath(scenes.c_str());
      sxLoader::setSaveDirectory(i % 2 ? scenes.c_str() : dir.path.c_str());
    }
  });
  std::vector<std::thread> workers;
  for (int t = 0; t < 3; ++t)
    workers.emplace_back([&, t] {
      // On a loaded machine the editor may sit descheduled with the path
      // emptied for the whole of 150 rounds; go on until a search succeeded.
      for (int i = 0; i < 150 || (found.load() == 0 && i < 1000000); ++i) {
        // Found through the path, or not while the editor has just emptied it.
        sxRef<sxBase> root(sxLoader::importFile("scene.sx"));
        const bool right = root ? sxLoader::getError() == sxLoader::ERROR_NONE &&
                                      std::string(root->getName()) == "found"
                                : sxLoader::getError() == sxLoader::ERROR_NOT_FOUND;
        found += root && right;
        wrong += !right;
        // Each thread's own failure stays its own.
        if (sxLoader::importFile("missing.sx") || sxLoader::getError() != sxLoader::ERROR_NOT_FOUND)
          ++wrong;
        // Into whichever save directory is set at the time.
        if (root && !sxLoader::exportFile(root.get(), ("out" + std::to_string(t)).c_str())) ++wrong;
      }
    });
  for (std::thread& w : workers) w.join();
  stop = true;
  editor.join();
  sxDeleteFilePaths();
  sxLoader::setSaveDirectory(nullptr);
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_GT(found.load(), 0);
}
