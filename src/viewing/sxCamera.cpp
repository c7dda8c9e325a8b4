#include <sx/viewing/sxCamera.h>

SX_DEFINE_CLASS(sxCamera)

sxCamera::~sxCamera() = default;

void sxCamera::setTravContext(sxTravContext* context) {
  travContext = context;
}
