#include <sx/input/sxKeyboard.h>

SX_DEFINE_CLASS(sxKeyboard)
