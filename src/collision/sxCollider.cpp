#include <sx/collision/sxCollider.h>

SX_DEFINE_CLASS(sxCollider)
