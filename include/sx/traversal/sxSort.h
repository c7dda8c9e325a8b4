#pragma once

#include <sx/traversal/sxTravTrait.h>

// Selects how the drawing of a sub-graph is sorted.
class SX_API sxSort : public sxTravTrait {
 public:
  SX_CLASS(sxSort, sxTravTrait)
  sxSort() = default;
};
