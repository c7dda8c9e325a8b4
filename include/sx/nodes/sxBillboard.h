#pragma once

#include <sx/nodes/sxGroup.h>

// A node that turns its sub-graph towards the viewpoint.
class SX_API sxBillboard : public sxGroup {
 public:
  SX_CLASS(sxBillboard, sxGroup)
  sxBillboard() = default;
};
