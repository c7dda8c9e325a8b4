#include <sx/viewing/sxCamera.h>

SX_DEFINE_CLASS(sxCamera)
