#pragma once

#include <sx/collision/sxFence.h>

// A fence bounded by a sphere.
class SX_API sxSphereFence : public sxFence {
 public:
  SX_DECLARE_CLASS(sxSphereFence)
  SX_DEFAULT_CONSTRUCTORS(sxSphereFence, sxFence)
};
