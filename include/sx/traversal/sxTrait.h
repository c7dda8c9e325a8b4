#pragma once

#include <sx/object/sxBase.h>

// A small object that changes how a sub-graph is traversed, drawn or heard.
class SX_API sxTrait : public sxBase {
 public:
  SX_CLASS(sxTrait, sxBase)
  sxTrait() = default;
};
