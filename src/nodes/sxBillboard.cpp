#include <sx/nodes/sxBillboard.h>
#include <sx/nodes/sxGroupType.h>

SX_DEFINE_CLASS(sxBillboard, sxGroupType)
