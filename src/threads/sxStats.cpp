#include <sx/threads/sxStats.h>

SX_DEFINE_CLASS(sxStats)
