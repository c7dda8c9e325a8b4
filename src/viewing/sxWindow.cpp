#include <sx/viewing/sxWindow.h>

SX_DEFINE_CLASS(sxWindow)
