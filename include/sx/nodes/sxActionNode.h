#pragma once

#include <sx/nodes/sxGroup.h>

// A node that applies actions when a traversal reaches it.
class SX_API sxActionNode : public sxGroup {
 public:
  SX_DECLARE_CLASS(sxActionNode)
  SX_DEFAULT_CONSTRUCTORS(sxActionNode, sxGroup)
};
