#pragma once

#include <sx/object/sxBase.h>

// A viewpoint of the camera pass; rendering plug-ins give it its behaviour.
class SX_API sxCamera : public sxBase {
 public:
  SX_CLASS(sxCamera, sxBase)
  sxCamera() = default;
};
