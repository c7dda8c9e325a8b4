#pragma once

#include <sx/collision/sxFence.h>

// A fence bounded by a sphere.
class SX_API sxSphereFence : public sxFence {
 public:
  SX_CLASS(sxSphereFence, sxFence)
  sxSphereFence() = default;
};
