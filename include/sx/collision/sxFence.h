#pragma once

#include <sx/nodes/sxGroup.h>

// A node whose bounds colliders test.
class SX_API sxFence : public sxGroup {
 public:
  SX_CLASS(sxFence, sxGroup)
  sxFence() = default;
};
