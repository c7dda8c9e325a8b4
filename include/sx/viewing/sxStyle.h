#pragma once

#include <sx/nodes/sxGroup.h>

// A group that carries traits governing its whole sub-graph.
class SX_API sxStyle : public sxGroup {
 public:
  SX_CLASS(sxStyle, sxGroup)
  sxStyle() = default;
};
