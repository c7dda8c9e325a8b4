#pragma once

#include <sx/object/sxBase.h>

// The interior node of the scene graph and the base of every node kind.
class SX_API sxGroup : public sxBase {
 public:
  SX_CLASS(sxGroup, sxBase)
  sxGroup() = default;
};
