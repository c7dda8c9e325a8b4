#include <sx/nodes/sxActionNode.h>
#include <sx/nodes/sxGroupType.h>

SX_IMPLEMENT_CLASS(sxActionNode, sxGroup, sxGroupType)
