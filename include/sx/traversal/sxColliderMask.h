#pragma once

#include <sx/traversal/sxTravTrait.h>

// Selects which colliders see a sub-graph.
class SX_API sxColliderMask : public sxTravTrait {
 public:
  SX_CLASS(sxColliderMask, sxTravTrait)
  sxColliderMask() = default;
};
