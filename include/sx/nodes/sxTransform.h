#pragma once

#include <sx/nodes/sxGroup.h>

// A group that places its sub-graph by a matrix.
class SX_API sxTransform : public sxGroup {
 public:
  SX_CLASS(sxTransform, sxGroup)
  sxTransform() = default;
};
