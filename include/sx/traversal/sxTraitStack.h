#pragma once

#include <sx/object/sxBase.h>

// One stack of traits per trait type, applied as a traversal enters and leaves styles.
class SX_API sxTraitStack : public sxBase {
 public:
  SX_DECLARE_CLASS(sxTraitStack)
  SX_DEFAULT_CONSTRUCTORS(sxTraitStack, sxBase)
};
