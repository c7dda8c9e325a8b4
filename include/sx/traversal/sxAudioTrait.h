#pragma once

#include <sx/traversal/sxTrait.h>

// The family of traits that change how a sub-graph is heard.
class SX_API sxAudioTrait : public sxTrait {
 public:
  SX_CLASS(sxAudioTrait, sxTrait)
  sxAudioTrait() = default;
};
