#include <sx/viewing/sxCamera.h>

SX_IMPLEMENT_CLASS(sxCamera, sxBase, sxType)
