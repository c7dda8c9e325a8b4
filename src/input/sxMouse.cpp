#include <sx/input/sxMouse.h>

SX_DEFINE_CLASS(sxMouse)
