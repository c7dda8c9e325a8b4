#pragma once

#include <sx/object/sxBase.h>

// The receiver of the audio pass: hands playing emitters to the audio back end.
class SX_API sxListener : public sxBase {
 public:
  SX_CLASS(sxListener, sxBase)
  sxListener() = default;
};
