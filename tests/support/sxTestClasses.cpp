#include "support/sxTestClasses.h"

SX_IMPLEMENT_CLASS(sxTestNode, sxBase, sxType)
SX_IMPLEMENT_CLASS(sxTestLeaf, sxTestNode, sxType)
SX_IMPLEMENT_CLASS(sxTestAbstract, sxBase, sxType)
