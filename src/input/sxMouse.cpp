#include <sx/input/sxMouse.h>

SX_IMPLEMENT_CLASS(sxMouse, sxQueue, sxType)
