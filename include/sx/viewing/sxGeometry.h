#pragma once

#include <sx/nodes/sxGroup.h>

// A leaf node holding drawable geometry.
class SX_API sxGeometry : public sxGroup {
 public:
  SX_CLASS(sxGeometry, sxGroup)
  sxGeometry() = default;
};
