#pragma once

#include <sx/nodes/sxSwitch.h>

// A switch that steps through its children over time or frames.
class SX_API sxAutoSwitch : public sxSwitch {
 public:
  SX_CLASS(sxAutoSwitch, sxSwitch)
  sxAutoSwitch() = default;
};
