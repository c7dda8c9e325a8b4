#pragma once

#include <sx/traversal/sxTravTrait.h>

// Removes a sub-graph from traversals while enabled.
class SX_API sxPrune : public sxTravTrait {
 public:
  SX_DECLARE_CLASS(sxPrune)
  SX_DEFAULT_CONSTRUCTORS(sxPrune, sxTravTrait)
};
