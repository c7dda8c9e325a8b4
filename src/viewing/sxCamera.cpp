#include <sx/viewing/sxCamera.h>

#include "viewing/sxPassEntry.h"

SX_DEFINE_CLASS(sxCamera)

sxCamera::sxCamera() : travContext(sxiPassEntry::newContext(sxTraitStack::STACK_ALL)) {}

sxCamera::sxCamera(const sxCamera& source)
    : sxBase(source),
      viewpoint(source.viewpoint),
      travContext(sxiPassEntry::newContext(sxTraitStack::STACK_ALL)) {
  int l, r, b, t;
  source.getViewport(l, r, b, t);
  setViewport(l, r, b, t);
}

sxCamera::~sxCamera() = default;

void sxCamera::setTravContext(sxTravContext* context) {
  travContext = context;
}

void sxCamera::traverse(sxGroup* root) {
  sxiPassEntry::run(this, root, &viewpoint);
}
