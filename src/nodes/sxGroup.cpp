#include <sx/nodes/sxGroup.h>
#include <sx/nodes/sxGroupType.h>

SX_IMPLEMENT_CLASS(sxGroup, sxBase, sxGroupType)
