#include <sx/nodes/sxGroup.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxTravContext)

sxTravContext::sxTravContext() {
  reset();
}

// A copy has the same settings and references and an empty walk state of its own.
sxTravContext::sxTravContext(const sxTravContext& other) : sxBase(other) {
  *this = other;
}

sxTravContext& sxTravContext::operator=(const sxTravContext& other) {
  if (this == &other) return *this;
  sxBase::operator=(other);
  scene = other.scene;
  viewpoint = other.viewpoint;
  travMask = other.travMask;
  traitStack = other.traitStack;
  stats = other.stats;
  reset();
  return *this;
}

sxTravContext::~sxTravContext() = default;

void sxTravContext::reset() {
  matrixStack.reset();
  invMatrixStack.reset();
  volumeStack.reset();
  failedRayMaskStack.reset();
  failedRayMaskStack.push(toSlot(0));
  travStack.reset();
  namedTravStack.reset();
  cullResultStack.reset();
  cullResultStack.push(toSlot(sxVolume::PARTIAL));
  flags = FLAGS_AFTER_RESET;
  colliderMask = 0xFFFFFFFFu;
  transitionScale = 0.0f;
  transitionMode = 0;
  textureID = 0;
  rangeSwitchScale = 1.0f;
  if (traitStack) traitStack->reset(true);
}

void sxTravContext::setTransparencyFlags() {
  if (allFlags(0x0002 | 0x0004) || allFlags(0x0001 | 0x0008))
    flags |= FLAG_TRANSPARENCY;
  else
    flags &= ~unsigned(FLAG_TRANSPARENCY);
}
