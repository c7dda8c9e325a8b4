#include <sx/nodes/sxListener.h>

SX_DEFINE_CLASS(sxListener)

sxListener::~sxListener() = default;

void sxListener::setTravContext(sxTravContext* context) {
  travContext = context;
}

void sxListener::setPriorityScale(float) {}

void sxListener::setAudioLevelScale(float) {}
