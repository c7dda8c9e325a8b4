#include <sx/traversal/sxAudioTrait.h>

SX_IMPLEMENT_CLASS(sxAudioTrait, sxTrait, sxType)
