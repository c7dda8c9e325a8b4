#pragma once

#include <sx/traversal/sxTravTrait.h>

// Selects what a sub-graph offers to colliders.
class SX_API sxColliderTarget : public sxTravTrait {
 public:
  SX_CLASS(sxColliderTarget, sxTravTrait)
  sxColliderTarget() = default;
};
