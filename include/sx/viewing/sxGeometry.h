#pragma once

#include <sx/nodes/sxGroup.h>

// A leaf node holding drawable geometry.
class SX_API sxGeometry : public sxGroup {
 public:
  SX_DECLARE_CLASS(sxGeometry)
  SX_DEFAULT_CONSTRUCTORS(sxGeometry, sxGroup)
};
