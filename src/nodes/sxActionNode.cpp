#include <sx/nodes/sxActionNode.h>
#include <sx/nodes/sxGroupType.h>

SX_DEFINE_CLASS(sxActionNode, sxGroupType)

void sxActionNode::resolveGroup(const sxGroup*, sxGroup*) {}
