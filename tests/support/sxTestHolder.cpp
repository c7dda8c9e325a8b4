#include "support/sxTestHolder.h"

SX_IMPLEMENT_CLASS(sxTestHolder, sxBase, sxType)
