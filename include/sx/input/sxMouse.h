#pragma once

#include <sx/containers/sxQueue.h>

// The queue of mouse events that the window layer fills.
class SX_API sxMouse : public sxQueue {
 public:
  SX_CLASS(sxMouse, sxQueue)
  sxMouse() = default;
};
