#include <sx/nodes/sxBillboard.h>
#include <sx/nodes/sxGroupType.h>

SX_IMPLEMENT_CLASS(sxBillboard, sxGroup, sxGroupType)
