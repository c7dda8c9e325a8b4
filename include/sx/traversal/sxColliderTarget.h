#pragma once

#include <sx/traversal/sxTravTrait.h>

// Selects what a sub-graph offers to colliders.
class SX_API sxColliderTarget : public sxTravTrait {
 public:
  SX_DECLARE_CLASS(sxColliderTarget)
  SX_DEFAULT_CONSTRUCTORS(sxColliderTarget, sxTravTrait)
};
