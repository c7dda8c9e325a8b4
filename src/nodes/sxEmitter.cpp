#include <sx/nodes/sxEmitter.h>
#include <sx/nodes/sxGroupType.h>

SX_DEFINE_CLASS(sxEmitter, sxGroupType)
