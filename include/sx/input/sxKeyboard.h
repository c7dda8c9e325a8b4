#pragma once

#include <sx/containers/sxQueue.h>

// The queue of key events that the window layer fills.
class SX_API sxKeyboard : public sxQueue {
 public:
  SX_CLASS(sxKeyboard, sxQueue)
  sxKeyboard() = default;
};
