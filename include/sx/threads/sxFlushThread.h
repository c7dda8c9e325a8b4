#pragma once

#include <sx/nodes/sxAction.h>

// The action with which a poster waits until a thread has reached it in its queue.
class SX_API sxFlushThread : public sxAction {
 public:
  SX_DECLARE_CLASS(sxFlushThread)
  SX_DEFAULT_CONSTRUCTORS(sxFlushThread, sxAction)
};
