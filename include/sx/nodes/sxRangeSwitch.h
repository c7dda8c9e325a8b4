#pragma once

#include <sx/nodes/sxSwitch.h>

// A switch that selects children by distance from the viewpoint.
class SX_API sxRangeSwitch : public sxSwitch {
 public:
  SX_CLASS(sxRangeSwitch, sxSwitch)
  sxRangeSwitch() = default;
};
