#pragma once

#include <sx/collision/sxFence.h>

// A fence bounded by a box.
class SX_API sxBoxFence : public sxFence {
 public:
  SX_CLASS(sxBoxFence, sxFence)
  sxBoxFence() = default;
};
