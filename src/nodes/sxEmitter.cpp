#include <sx/nodes/sxEmitter.h>
#include <sx/nodes/sxGroupType.h>

SX_IMPLEMENT_CLASS(sxEmitter, sxGroup, sxGroupType)
