#pragma once

#include <sx/viewing/sxStyle.h>

// The root node of a graph that is updated once per frame.
class SX_API sxScene : public sxStyle {
 public:
  SX_CLASS(sxScene, sxStyle)
  sxScene() = default;
};
