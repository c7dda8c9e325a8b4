#include <sx/viewing/sxWindow.h>

SX_IMPLEMENT_CLASS(sxWindow, sxBase, sxType)
