#pragma once

#include <sx/object/sxBase.h>

// Walks a scene graph and decides at every group whether to go on, prune or stop.
class SX_API sxTraverser : public sxBase {
 public:
  SX_CLASS(sxTraverser, sxBase)
  sxTraverser() = default;
};
