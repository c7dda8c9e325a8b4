#include <sx/collision/sxCollider.h>

SX_DEFINE_CLASS(sxCollider)

sxCollider::~sxCollider() = default;

void sxCollider::setTravContext(sxTravContext* context) {
  travContext = context;
}
