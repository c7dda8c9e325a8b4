#pragma once

#include <sx/nodes/sxTransform.h>

// A placed, drawable object.
class SX_API sxModel : public sxTransform {
 public:
  SX_CLASS(sxModel, sxTransform)
  sxModel() = default;
};
