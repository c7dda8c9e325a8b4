#pragma once

#include <sx/nodes/sxGroup.h>

// A node that turns its sub-graph towards the viewpoint.
class SX_API sxBillboard : public sxGroup {
 public:
  SX_DECLARE_CLASS(sxBillboard)
  SX_DEFAULT_CONSTRUCTORS(sxBillboard, sxGroup)
};
