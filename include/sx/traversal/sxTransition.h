#pragma once

#include <sx/traversal/sxTravTrait.h>

// Blends a sub-graph in or out over a transition.
class SX_API sxTransition : public sxTravTrait {
 public:
  SX_CLASS(sxTransition, sxTravTrait)
  sxTransition() = default;
};
