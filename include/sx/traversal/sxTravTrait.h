#pragma once

#include <sx/traversal/sxTrait.h>

// The family of traits that change how a sub-graph is traversed.
class SX_API sxTravTrait : public sxTrait {
 public:
  SX_CLASS(sxTravTrait, sxTrait)
  sxTravTrait() = default;
};
