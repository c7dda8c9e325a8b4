#include <sx/threads/sxStats.h>

SX_IMPLEMENT_CLASS(sxStats, sxBase, sxType)
