#include <sx/threads/sxSemaphore.h>

SX_IMPLEMENT_CLASS(sxSemaphore, sxBase, sxType)
