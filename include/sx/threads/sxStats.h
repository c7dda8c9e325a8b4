#pragma once

#include <sx/object/sxBase.h>

// Counts traversed groups and applied traits per class.
class SX_API sxStats : public sxBase {
 public:
  SX_DECLARE_CLASS(sxStats)
  SX_DEFAULT_CONSTRUCTORS(sxStats, sxBase)
};
