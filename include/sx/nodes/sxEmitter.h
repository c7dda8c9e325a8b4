#pragma once

#include <sx/nodes/sxGroup.h>

// A sound source in the scene graph.
class SX_API sxEmitter : public sxGroup {
 public:
  SX_DECLARE_CLASS(sxEmitter)
  SX_DEFAULT_CONSTRUCTORS(sxEmitter, sxGroup)
};
