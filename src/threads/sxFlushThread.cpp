#include <sx/threads/sxFlushThread.h>

SX_IMPLEMENT_CLASS(sxFlushThread, sxAction, sxType)
