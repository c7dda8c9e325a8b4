#include <sx/input/sxKeyboard.h>

SX_IMPLEMENT_CLASS(sxKeyboard, sxQueue, sxType)
