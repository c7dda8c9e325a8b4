#pragma once

#include <sx/nodes/sxGroup.h>

// A group that selects and blends its children.
class SX_API sxSwitch : public sxGroup {
 public:
  SX_CLASS(sxSwitch, sxGroup)
  sxSwitch() = default;
};
