#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "support/sxTestFiles.h"

namespace {

int findLoader(const char* moduleName) {
  for (int i = 0; i < sxLoader::getNumLoaders(); ++i)
    if (std::string(sxLoader::getLoaderName(i)) == moduleName) return i;
  return -1;
}

}  // namespace

// Discovery registers the probe module's extensions once (a repeated one,
// in another case, is not added twice) and leaves the module unloaded; the
// rescan reports every directory, the library file that is no module and
// the one that makes no record, with the system's reason, and changes
// nothing.
TEST(sxLoaderModules, DiscoveryRegistersExtensionsAndSkipsWhatIsNoModule) {
  int def = findLoader("SXPROBELOADER.DLL");
  ASSERT_GE(def, 0);
  ASSERT_EQ(sxLoader::getNumLoaderExtensions(def), 2);
  EXPECT_STREQ(sxLoader::getLoaderExtension(def, 1), "PRB");
  EXPECT_EQ(sxPlugIn::find("sxProbeLoader.dll"), nullptr) << "unloaded after the scan";

  std::string trace;
  sxSetPlugInTrace([](const char* line,
                      void* user) { *static_cast<std::string*>(user) += std::string(line) + "\n"; },
                   &trace);
  const int loaders = sxLoader::getNumLoaders();
  sxLoader::initLoaders();
  sxSetPlugInTrace(nullptr, nullptr);
  EXPECT_EQ(sxLoader::getNumLoaders(), loaders);
  EXPECT_EQ(sxLoader::getNumLoaderExtensions(def), 2);
  const std::string dir = SXCORE_TEST_MODULE_DIR;
  EXPECT_NE(trace.find("searched " + dir + " for loader modules\n"), std::string::npos) << trace;
  EXPECT_NE(trace.find("searched " + std::string(sxGetPlugInDirectory())), std::string::npos)
      << trace;
  EXPECT_NE(trace.find("cannot load " + dir + "/libsxBrokenLoader.so: "), std::string::npos)
      << trace;
  EXPECT_NE(trace.find(dir + "/libsxNoRecordLoader.so made no plug-in record"), std::string::npos)
      << trace;
  EXPECT_EQ(sxPlugIn::find("sxNoRecordLoader.dll"), nullptr);
}

// Import and export go to the module by extension, ignoring case; the
// module is loaded for them and stays while objects of its classes live,
// and a failed export leaves the existing file as it was.
TEST(sxLoaderModules, DispatchByExtensionAndLiveObjectsKeepTheModule) {
  sxTempDir dir;
  sxRef<sxGroup> root = new sxGroup;
  root->setName("probe root");
  const std::string file = dir.file("scene.PROBE");
  ASSERT_TRUE(sxLoader::exportFile(root.get(), file.c_str())) << sxLoader::getErrorMessage();
  EXPECT_EQ(sxReadText(file), "probe root\n");
  EXPECT_EQ(dir.count(), 1) << "no temporary left";

  sxPlugIn* record = nullptr;
  {
    sxRef<sxBase> back = sxLoader::importFile(file.c_str());
    ASSERT_TRUE(back) << sxLoader::getErrorMessage();
    EXPECT_STREQ(back->getType()->getName(), "sxProbeNode");
    EXPECT_STREQ(back->getName(), "probe root");
    record = sxPlugIn::find("libsxprobeloader.so");
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(back->getType()->getPlugIn(), record);
    EXPECT_EQ(record->getRefCount(), 1);
    EXPECT_EQ(record->getVersion(), sxMakeVersion(3, 1, 4));
    EXPECT_FALSE(record->unload());
    sxPlugIn::unloadAll();
    EXPECT_EQ(sxPlugIn::find("sxProbeLoader.dll"), record);

    // The module refuses a null root: the file stays.
    EXPECT_FALSE(sxLoader::exportFile(nullptr, file.c_str()));
    EXPECT_EQ(sxReadText(file), "probe root\n");
    EXPECT_EQ(dir.count(), 1);
  }
  sxPlugIn::unloadAll();
  EXPECT_EQ(sxPlugIn::find("sxProbeLoader.dll"), nullptr);
}

// A scene file lists the modules its objects need; reading it loads them by
// module name from the module directories, so that their classes can be
// made, even after the module had been unloaded.
TEST(sxLoaderModules, SceneFilesLoadTheModulesTheirObjectsNeed) {
  sxTempDir dir;
  const std::string probe = dir.file("node.probe"), scene = dir.file("scene.sx");
  std::ofstream(probe) << "from the module\n";
  {
    sxRef<sxGroup> root = new sxGroup;
    sxRef<sxBase> node = sxLoader::importFile(probe.c_str());
    ASSERT_TRUE(node && node->isOfType(sxGroup::getClassType()));
    ASSERT_TRUE(root->addChild(static_cast<sxGroup*>(node.get())));
    ASSERT_TRUE(sxLoader::exportFile(root.get(), scene.c_str())) << sxLoader::getErrorMessage();
  }
  sxPlugIn::unloadAll();
  ASSERT_EQ(sxPlugIn::find("sxProbeLoader.dll"), nullptr);
  ASSERT_EQ(sxType::findType("sxProbeNode"), nullptr) << "the module's classes went with it";

  sxRef<sxBase> back = sxLoader::importFile(scene.c_str());
  ASSERT_TRUE(back) << sxLoader::getErrorMessage();
  auto* group = static_cast<sxGroup*>(back.get());
  ASSERT_EQ(group->getNumChildren(), 1);
  EXPECT_STREQ(group->getChild(0)->getType()->getName(), "sxProbeNode");
  EXPECT_STREQ(group->getChild(0)->getName(), "from the module");
  back = nullptr;
  sxPlugIn::unloadAll();
  EXPECT_EQ(sxPlugIn::find("sxProbeLoader.dll"), nullptr);
}

// Threads import through the module while another unloads whatever it can:
// the module stays while a thread is inside it or holds one of its objects,
// and goes once all are gone.
TEST(sxLoaderModulesConcurrency, ImportsRaceUnloading) {
  sxTempDir dir;
  const std::string probe = dir.file("n.probe");
  std::ofstream(probe) << "raced\n";
  std::atomic<int> imported{0};
  std::atomic<bool> done{false};
  std::thread unloader([&] {
    while (!done.load()) sxPlugIn::unloadAll();
  });
  std::vector<std::thread> readers;
  for (int t = 0; t < 3; ++t)
    readers.emplace_back([&] {
      for (int i = 0; i < 100; ++i) {
        sxRef<sxBase> node = sxLoader::importFile(probe.c_str());
        if (node && std::string(node->getName()) == "raced" &&
            std::string(node->getType()->getName()) == "sxProbeNode")
          ++imported;
      }
    });
  for (std::thread& r : readers) r.join();
  done = true;
  unloader.join();
  EXPECT_EQ(imported.load(), 300);
  sxPlugIn::unloadAll();
  EXPECT_EQ(sxPlugIn::find("sxProbeLoader.dll"), nullptr);
}
