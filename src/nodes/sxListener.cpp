#include <sx/nodes/sxListener.h>

SX_IMPLEMENT_CLASS(sxListener, sxBase, sxType)
