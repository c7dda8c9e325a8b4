#include <sx/collision/sxCollider.h>

SX_IMPLEMENT_CLASS(sxCollider, sxBase, sxType)
