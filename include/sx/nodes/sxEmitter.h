#pragma once

#include <sx/nodes/sxGroup.h>

// A sound source in the scene graph.
class SX_API sxEmitter : public sxGroup {
 public:
  SX_CLASS(sxEmitter, sxGroup)
  sxEmitter() = default;
};
