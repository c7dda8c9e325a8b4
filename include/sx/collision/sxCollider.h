#pragma once

#include <sx/object/sxBase.h>

// Intersects a graph with rays and generates hit records.
class SX_API sxCollider : public sxBase {
 public:
  SX_DECLARE_CLASS(sxCollider)
  SX_DEFAULT_CONSTRUCTORS(sxCollider, sxBase)
};
