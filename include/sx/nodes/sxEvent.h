#pragma once

#include <sx/object/sxBase.h>

// A named trigger that applies its actions and wakes the threads waiting for it.
class SX_API sxEvent : public sxBase {
 public:
  SX_DECLARE_CLASS(sxEvent)
  SX_DEFAULT_CONSTRUCTORS(sxEvent, sxBase)
};
