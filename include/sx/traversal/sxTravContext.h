#pragma once

#include <sx/object/sxBase.h>

// The state of one traversal: path, matrix stacks, cull results, flags, traits.
class SX_API sxTravContext : public sxBase {
 public:
  SX_CLASS(sxTravContext, sxBase)
  sxTravContext() = default;
};
