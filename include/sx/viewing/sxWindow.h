#pragma once

#include <sx/object/sxBase.h>

// An output window; window plug-ins give it its behaviour.
class SX_API sxWindow : public sxBase {
 public:
  SX_CLASS(sxWindow, sxBase)
  sxWindow() = default;
};
