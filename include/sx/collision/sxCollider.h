#pragma once

#include <sx/object/sxBase.h>

// Intersects a graph with rays and generates hit records.
class SX_API sxCollider : public sxBase {
 public:
  SX_CLASS(sxCollider, sxBase)
  sxCollider() = default;
};
