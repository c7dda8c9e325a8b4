#pragma once

#include <sx/traversal/sxTravTrait.h>

// Selects how a sub-graph is culled against the view.
class SX_API sxCull : public sxTravTrait {
 public:
  SX_CLASS(sxCull, sxTravTrait)
  sxCull() = default;
};
