#pragma once

#include <sx/object/sxBase.h>

// Counts traversed groups and applied traits per class.
class SX_API sxStats : public sxBase {
 public:
  SX_CLASS(sxStats, sxBase)
  sxStats() = default;
};
