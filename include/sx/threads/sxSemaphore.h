#pragma once

#include <sx/object/sxBase.h>

// A counting semaphore as a library object.
class SX_API sxSemaphore : public sxBase {
 public:
  SX_DECLARE_CLASS(sxSemaphore)
  SX_DEFAULT_CONSTRUCTORS(sxSemaphore, sxBase)
};
