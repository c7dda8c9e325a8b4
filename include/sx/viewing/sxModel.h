#pragma once

#include <sx/nodes/sxTransform.h>

// A placed, drawable object.
class SX_API sxModel : public sxTransform {
 public:
  SX_DECLARE_CLASS(sxModel)
  SX_DEFAULT_CONSTRUCTORS(sxModel, sxTransform)
};
