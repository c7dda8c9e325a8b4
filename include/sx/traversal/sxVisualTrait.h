#pragma once

#include <sx/traversal/sxTrait.h>

// The family of traits that change how a sub-graph is drawn.
class SX_API sxVisualTrait : public sxTrait {
 public:
  SX_CLASS(sxVisualTrait, sxTrait)
  sxVisualTrait() = default;
};
