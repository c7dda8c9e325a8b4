#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <sys/resource.h>
#include <csignal>

#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/sxReferenceScene.h"
#include "support/sxTestFiles.h"
#include "support/sxTestHolder.h"
#include "support/sxThreadTestSupport.h"

// A class whose objects are never written.
class sxTestHidden : public sxBase {
 public:
  SX_DECLARE_CLASS(sxTestHidden)
  SX_DEFAULT_CONSTRUCTORS(sxTestHidden, sxBase)
};
SX_IMPLEMENT_CLASS(sxTestHidden, sxBase, sxType)

namespace {

namespace fs = std::filesystem;

// Access to the protected error message of the loader layer.
struct LoaderAccess : sxLoader {
  using sxLoader::setErrorMessage;
};

template <class T = sxBase>
T* make(const char* name) {
  auto* obj = new T;
  obj->setName(name);
  return obj;
}

TEST(Loader, ExportImportTheirErrorsAndAFailedExportThatKeepsTheTarget) {
  // The error message's first call (of a process, under ctest) only creates it.
  const char* initial = sxLoader::getErrorMessage();
  LoaderAccess::setErrorMessage("first");
  EXPECT_STREQ(sxLoader::getErrorMessage(), initial ? "first" : "")
      << "the first call only creates";
  LoaderAccess::setErrorMessage("second");
  EXPECT_STREQ(sxLoader::getErrorMessage(), "second");
  LoaderAccess::setErrorMessage(nullptr);
  EXPECT_STREQ(sxLoader::getErrorMessage(), "");
  sxTempDir dir;
  sxRef<sxGroup> g(make<sxGroup>("scene root"));
  g->addAttribute(make<sxGroup>("child"));
  std::string base = dir.file("scene");
  ASSERT_TRUE(sxLoader::exportFile(g.get(), base.c_str()));
  EXPECT_EQ(sxLoader::getError(), sxLoader::ERROR_NONE);
  EXPECT_TRUE(fs::exists(base + ".sx") && dir.count() == 1)
      << "groups get the extension sx; no temporary file is left";
  ASSERT_TRUE(sxLoader::exportFile(g.get(), (base + ".SX").c_str()));
  EXPECT_EQ(sxReadBytes(base + ".sx"), sxReadBytes(base + ".SX")) << "the extension's case is kept";
  sxBase* back = sxLoader::importFile((base + ".sx").c_str());
  ASSERT_TRUE(back && back->getRefCount() == 0) << "handed over unreferenced";
  sxRef<sxBase> held(back);
  ASSERT_NE(sxAttribute(back, 0), nullptr);
  EXPECT_STREQ(sxAttribute(back, 0)->getName(), "child");
  EXPECT_EQ(sxAttribute(back, 0)->getRefCount(), 1) << "the file let go of it";
  sxRef<sxGroup> typed(sxGroup::import((base + ".sx").c_str()));
  EXPECT_STREQ(typed ? typed->getName() : nullptr, "scene root");
  EXPECT_EQ(sxTestHolder::import((base + ".sx").c_str()), nullptr) << "not of that class";
  // An export that fails leaves an existing file as it was; the limit on
  // the file size makes the data write fail after the header went out.
  std::vector<unsigned char> before = sxReadBytes(base + ".sx");
  for (int i = 0; i < 200; ++i) g->addAttribute(new sxBase);
  auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  rlimit saved{};
  getrlimit(RLIMIT_FSIZE, &saved);
  const rlimit limit{2000, saved.rlim_max};
  setrlimit(RLIMIT_FSIZE, &limit);
  const bool exported = sxLoader::exportFile(g.get(), base.c_str());
  setrlimit(RLIMIT_FSIZE, &saved);
  std::signal(SIGXFSZ, oldHandler);
  EXPECT_TRUE(!exported && sxLoader::getError() == sxLoader::ERROR_WRITE);
  EXPECT_EQ(sxReadBytes(base + ".sx"), before);
  EXPECT_EQ(dir.count(), 2) << "the temporary file is removed";
  ASSERT_TRUE(sxLoader::exportFile(g.get(), base.c_str()));
  EXPECT_GT(sxReadBytes(base + ".sx").size(), 2000u);
  // Imports that fail.
  fs::copy_file(base + ".sx", dir.file("noext"));
  fs::create_directory(dir.file("d.dir"));
  fs::copy_file(base + ".sx", dir.file("d.dir/noext"));
  sxWriteBytes(dir.file("text.txt"), std::vector<unsigned char>(200, 'a'));
  // Entry 0 of a class that does not exist.
  ASSERT_TRUE(sxWriteFile(dir.file("alien.sx"),
                          [](sxFile& f) { f.newEntry(f.newTag("sxNoSuchClass"))->writeInt(0); }));
  // Each case fails differently from the one before it.
  const std::pair<std::string, sxLoader::LOADER_ERROR> cases[] = {
      {dir.file("missing.sx"), sxLoader::ERROR_NOT_FOUND},
      {dir.file("noext"), sxLoader::ERROR_NO_EXTENSION},
      {dir.file("text.txt"), sxLoader::ERROR_OPEN},
      {dir.file("d.dir/noext"), sxLoader::ERROR_NO_EXTENSION},  // a dot in a directory
      {"", sxLoader::ERROR_NOT_FOUND},                          // a null name
      {dir.file("alien.sx"), sxLoader::ERROR_OPEN}};
  for (const auto& [path, error] : cases) {
    EXPECT_EQ(sxLoader::importFile(path.empty() ? nullptr : path.c_str()), nullptr) << path;
    EXPECT_EQ(sxLoader::getError(), error) << path;
  }
}

TEST(Loader, SaveDirectoryAndFileTypes) {
  sxTempDir dir;
  fs::create_directory(dir.file("out"));
  sxLoader::setSaveDirectory(dir.file("out").c_str());
  std::shared_ptr<void> restore(nullptr, [](void*) { sxLoader::setSaveDirectory(nullptr); });
  EXPECT_EQ(std::string(sxLoader::getSaveDirectory()), dir.file("out") + "/");
  sxRef<sxGroup> g(make<sxGroup>("g"));
  EXPECT_TRUE(sxLoader::exportFile(g.get(), "a.sx") && fs::exists(dir.file("out/a.sx")));
  // A non-group class needs a file type, also when an extension is given.
  sxTestHolder::initClass();
  sxRef<sxTestHolder> h(new sxTestHolder);
  EXPECT_FALSE(sxLoader::exportFile(h.get(), "h.sx"));
  EXPECT_EQ(sxLoader::getError(), sxLoader::ERROR_NO_FILE_TYPE);
  int before = sxLoader::getNumSolmaxFileTypes();
  ASSERT_TRUE(sxLoader::addSolmaxFileType(sxTestHolder::getClassType(), "sxh"));
  EXPECT_FALSE(sxLoader::addSolmaxFileType(sxTestHolder::getClassType(), "other"));
  EXPECT_FALSE(sxLoader::addSolmaxFileType(sxGroup::getClassType(), "SXH"));
  EXPECT_EQ(sxLoader::getNumSolmaxFileTypes(), before + 1);
  EXPECT_STREQ(sxLoader::getSolmaxFileType(before), "sxh");
  EXPECT_EQ(sxLoader::getSolmaxFileType(before + 1), nullptr);
  EXPECT_TRUE(sxLoader::exportFile(h.get(), "holder") && fs::exists(dir.file("out/holder.sxh")));
  EXPECT_TRUE(sxLoader::exportFile(h.get(), "holder.bin") &&
              fs::exists(dir.file("out/holder.bin")));
  // A save directory that does not exist: the file cannot be created.
  sxLoader::setSaveDirectory(dir.file("missing").c_str());
  EXPECT_FALSE(sxLoader::exportFile(g.get(), "a"));
  EXPECT_EQ(sxLoader::getError(), sxLoader::ERROR_NOT_FOUND);
  sxLoader::setSaveDirectory(nullptr);
  EXPECT_STREQ(sxLoader::getSaveDirectory(), "");
  EXPECT_FALSE(sxLoader::exportFile(nullptr, dir.file("none").c_str()));
  EXPECT_EQ(sxLoader::getError(), sxLoader::ERROR_WRITE);
}

// The plug-in records that are saved with files are loaded again when the
// file is read, where plug-in loading is on.
TEST(Loader, PlugInListInSceneFiles) {
  sxTempDir dir;
  std::string path = dir.file("plugins.sx");
  {
    sxPlugIn record("c:\\modules\\sxTestMissing-dbg.dll");
    record.setName("Test plug-in");
    record.setCompany("Tests");
    record.setRelease(3, 4, 5, "Nov 22 2026");
    sxPlugIn unsaved("sxTestUnsaved.dll");
    unsaved.enableSaveWithFile(false);
    ASSERT_TRUE(sxLoader::exportFile(sxRef<sxGroup>(make<sxGroup>("g")).get(), path.c_str()));
  }
  sxtest::MessageCapture capture;
  const std::string& messages = sxtest::MessageCapture::text();
  sxRef<sxBase> back(sxLoader::importFile(path.c_str()));
  EXPECT_EQ(messages, "") << "plug-in loading is off";
  sxPlugIn::enableDynamicPlugIns(true);
  sxRef<sxBase> again(sxLoader::importFile(path.c_str()));
  sxPlugIn::enableDynamicPlugIns(false);
  EXPECT_NE(messages.find("Attempting to load plug-in: SXTESTMISSING.DLL \n"), std::string::npos);
  EXPECT_NE(messages.find("Error loading plug-in: SXTESTMISSING.DLL \n"), std::string::npos);
  EXPECT_EQ(messages.find("SXTESTUNSAVED"), std::string::npos)
      << "a record not to be saved was saved";
  EXPECT_STREQ(back && again ? again->getName() : nullptr, "g");
}

TEST(ObjectPersistence, UnwritableAttributesAndReadingWithoutAnEntry) {
  sxRef<sxBase> root(make("root"));
  root->addAttribute(new sxTestHidden);
  root->addAttribute(make("kept"));
  sxTestHidden::getClassType()->setWritable(false);
  sxFile f, g;
  sxEntry* e = root->write(&f, nullptr);
  // A reference to an unwritable object is -1 and creates no entry.
  EXPECT_EQ(sxAttribute(root.get(), 0)->writeRef(&f, e), nullptr);
  EXPECT_EQ(f.getNumEntries(), 2);
  sxEntry* expected = g.newEntry(g.newTag("sxBase"));
  sxWriteObject(expected, "root", {1});  // the hidden attribute is neither counted nor referred to
  expected->writeInt(-1);
  EXPECT_EQ(sxEntryBytes(e), sxEntryBytes(expected));
  sxTestHidden::getClassType()->setWritable(true);
  // Without an entry, an object reads the first entry of its class.
  sxTempDir dir;
  const std::string path = dir.file("scene.sx");
  ASSERT_TRUE(sxReference::writeSceneFile(path.c_str()));
  // Declared before the file: the file lets go of its objects first.
  sxRef<sxTestHolder> h(new sxTestHolder);
  sxRef<sxEvent> event(new sxEvent);
  sxFile scene;
  ASSERT_TRUE(scene.open(path.c_str(), "r"));
  EXPECT_EQ(h->read(&scene, nullptr), scene.findEntry("sxTestHolder"));
  EXPECT_STREQ(h->getName(), "array0");
  EXPECT_EQ(event->read(&scene, nullptr), nullptr) << "no entry of that class";
}

}  // namespace

// The scene file's writer and reader report their progress, rising and
// within (0, 1], to the calling thread's function only.
TEST(Loader, ProgressGoesToTheCallingThreadsFunction) {
  sxTempDir dir;
  sxRef<sxGroup> root(make<sxGroup>("root"));
  for (int i = 0; i < 3000; ++i) root->addChild(new sxGroup);
  const std::string path = dir.file("big.sx");
  std::vector<double> seen;
  auto record = [](double done, void* user) {
    static_cast<std::vector<double>*>(user)->push_back(done);
  };
  auto rising = [&seen] {
    for (std::size_t i = 0; i < seen.size(); ++i)
      if (seen[i] <= 0 || seen[i] > 1 || (i && seen[i] < seen[i - 1])) return false;
    return !seen.empty();
  };
  sxLoader::setProgressFunc(record, &seen);
  ASSERT_TRUE(sxLoader::exportFile(root.get(), path.c_str()));
  EXPECT_TRUE(rising()) << seen.size();
  seen.clear();
  sxRef<sxBase> back(sxLoader::importFile(path.c_str()));
  ASSERT_TRUE(back);
  EXPECT_TRUE(rising()) << seen.size();

  const std::size_t reports = seen.size();
  std::thread([&] { sxRef<sxBase> other(sxLoader::importFile(path.c_str())); }).join();
  sxLoader::setProgressFunc(nullptr, nullptr);
  back = sxLoader::importFile(path.c_str());
  EXPECT_EQ(seen.size(), reports)
      << "another thread's import and a removed function report nothing";
}
