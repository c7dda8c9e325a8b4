#include <sx/nodes/sxListener.h>

SX_DEFINE_CLASS(sxListener)
