#pragma once

#include <sx/object/sxBase.h>

// An operation that threads and events apply to a target object.
class SX_API sxAction : public sxBase {
 public:
  SX_DECLARE_CLASS(sxAction)
  SX_DEFAULT_CONSTRUCTORS(sxAction, sxBase)
};
