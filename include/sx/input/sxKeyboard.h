#pragma once

#include <sx/containers/sxQueue.h>

// The queue of key events that the window layer fills.
class SX_API sxKeyboard : public sxQueue {
 public:
  SX_DECLARE_CLASS(sxKeyboard)
  SX_DEFAULT_CONSTRUCTORS(sxKeyboard, sxQueue)
};
