#include <sx/collision/sxCollider.h>

#include "viewing/sxPassEntry.h"

SX_DEFINE_CLASS(sxCollider)

sxCollider::sxCollider() : travContext(sxiPassEntry::newContext(sxTraitStack::STACK_TRAV)) {}

sxCollider::sxCollider(const sxCollider& source)
    : sxBase(source),
      viewpoint(source.viewpoint),
      travContext(sxiPassEntry::newContext(sxTraitStack::STACK_TRAV)) {}

sxCollider::~sxCollider() = default;

void sxCollider::setTravContext(sxTravContext* context) {
  travContext = context;
}

void sxCollider::traverse(sxGroup* root) {
  sxiPassEntry::run(this, root, &viewpoint);
}
