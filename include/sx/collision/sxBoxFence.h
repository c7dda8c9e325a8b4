#pragma once

#include <sx/collision/sxFence.h>

// A fence bounded by a box.
class SX_API sxBoxFence : public sxFence {
 public:
  SX_DECLARE_CLASS(sxBoxFence)
  SX_DEFAULT_CONSTRUCTORS(sxBoxFence, sxFence)
};
