#pragma once

#include <sx/traversal/sxTravTrait.h>

// Selects how a sub-graph is culled against the view.
class SX_API sxCull : public sxTravTrait {
 public:
  SX_DECLARE_CLASS(sxCull)
  SX_DEFAULT_CONSTRUCTORS(sxCull, sxTravTrait)
};
