// Compiled by checkCompileFails.cmake: builds as is, and must fail with
// SX_WRONG_PARENT, where the class names a grandparent as its parent.
#include <sx/nodes/sxTransform.h>

#if defined(SX_WRONG_PARENT)
#define SX_TEST_PARENT sxBase
#else
#define SX_TEST_PARENT sxGroup
#endif

class sxTestSpinner : public sxGroup {
 public:
  SX_CLASS(sxTestSpinner, SX_TEST_PARENT)
  sxTestSpinner() = default;
};
SX_DEFINE_CLASS(sxTestSpinner)
