#pragma once

#include <sx/traversal/sxTrait.h>

// The family of traits that change how a sub-graph is drawn.
class SX_API sxVisualTrait : public sxTrait {
 public:
  SX_DECLARE_CLASS(sxVisualTrait)
  SX_DEFAULT_CONSTRUCTORS(sxVisualTrait, sxTrait)
};
