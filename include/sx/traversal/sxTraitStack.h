#pragma once

#include <sx/object/sxBase.h>

// One stack of traits per trait type, applied as a traversal enters and leaves styles.
class SX_API sxTraitStack : public sxBase {
 public:
  SX_CLASS(sxTraitStack, sxBase)
  sxTraitStack() = default;
};
