// The loader suites run with the library started (the loader modules
// discovered), looking for modules also in the test modules' folder.

#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstdlib>

namespace {

class StartLibrary : public testing::Environment {
 public:
  void SetUp() override {
    setenv("SXCORE_PLUGIN_DIR", SXCORE_TEST_MODULE_DIR, 1);
    sxPlugIn::enableDynamicPlugIns(true);
    sxInit(nullptr);
  }
};

[[maybe_unused]] testing::Environment* const start =
    testing::AddGlobalTestEnvironment(new StartLibrary);

}  // namespace
