#pragma once

#include <sx/traversal/sxTravTrait.h>

// Removes a sub-graph from traversals while enabled.
class SX_API sxPrune : public sxTravTrait {
 public:
  SX_CLASS(sxPrune, sxTravTrait)
  sxPrune() = default;
};
