#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <string>
#include <tuple>

#include "support/sxThreadTestSupport.h"

namespace {
std::string moduleName(const char* path) {
  char* n = sxPlugIn::getModuleName(path);
  std::string r = n ? n : "(null)";
  sxMemory::free(n);
  return r;
}
}  // namespace

// The library's record is found by module name or handle, owns the built-in classes, is
// neither saved nor unloaded, and loading its module again returns it without a word.
// Other records cannot be made on the heap and leave the list when destroyed.
TEST(sxPlugIn, ModuleNamesRecordsAndTheKernelRecord) {
  sxPlugIn* kernel = sxPlugIn::find("sxcore.dll");
  ASSERT_NE(kernel, nullptr);
  EXPECT_NE(kernel->getVersion(), sxGetVersion()) << "the record's build is 0";
  EXPECT_EQ(kernel->getVersion(),
            sxMakeVersion(sxGetMajorVersion(sxGetVersion()), sxGetMinorVersion(sxGetVersion()), 0));
  // Present at start-up, it does not count instances (not dynamic).
  EXPECT_FALSE(kernel->isSaveWithFileEnabled() || kernel->isDynamic() || kernel->unload());
  EXPECT_NE(kernel->getModule(), nullptr);
  EXPECT_EQ(sxPlugIn::find(kernel->getModule()), kernel);
  EXPECT_EQ(sxBase::getClassType()->getPlugIn(), kernel);
  EXPECT_EQ(sxPlugIn::find(static_cast<const char*>(nullptr)), nullptr);
  sxtest::MessageCapture capture;
  EXPECT_EQ(sxPlugIn::load("C:\\bin\\sxcore.dll"), kernel);
  EXPECT_EQ(sxtest::MessageCapture::text(), "") << "a known module is not announced";
  EXPECT_EQ(sxPlugIn::load(nullptr), nullptr);
  EXPECT_EQ(new sxPlugIn, nullptr);
  int before = sxPlugIn::getNum();
  {
    sxPlugIn local;
    EXPECT_EQ(std::tuple(sxPlugIn::getNum(), sxPlugIn::get(before)),
              std::tuple(before + 1, &local));
    local.ref();  // not dynamic: counting does nothing
    EXPECT_EQ(local.getRefCount(), 0);
  }
  EXPECT_EQ(std::tuple(sxPlugIn::getNum(), sxPlugIn::get(before)), std::tuple(before, nullptr));
  // Module names are upper-cased file names without the debug marker.
  EXPECT_EQ(moduleName("C:\\app\\plugins\\sxWater-dbg.dll"), "SXWATER.DLL");
  EXPECT_EQ(moduleName("sxWater-DBG.dll"), "SXWATER.DLL");
  EXPECT_EQ(moduleName("/usr/lib/sxcore/libsxWater.so"), "LIBSXWATER.SO");
  EXPECT_EQ(moduleName("plain.dll"), "PLAIN.DLL");
  EXPECT_EQ(moduleName("a-dbg-dbg.dll"), "A-DBG.DLL");  // only the first marker goes
  EXPECT_EQ(moduleName(nullptr), "(null)");
}
