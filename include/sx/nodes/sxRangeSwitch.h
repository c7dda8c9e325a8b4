#pragma once

#include <sx/nodes/sxSwitch.h>

// A switch that selects children by distance from the viewpoint.
class SX_API sxRangeSwitch : public sxSwitch {
 public:
  SX_DECLARE_CLASS(sxRangeSwitch)
  SX_DEFAULT_CONSTRUCTORS(sxRangeSwitch, sxSwitch)
};
