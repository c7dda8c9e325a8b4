#include <sx/object/sxBase.h>

// Objects are not yet stored in files: every hook reports that nothing was
// read or written.
sxEntry* sxBase::read(sxFile*, sxEntry*) {
  return nullptr;
}
sxEntry* sxBase::write(sxFile*, sxEntry*) const {
  return nullptr;
}
sxEntry* sxBase::writeRef(sxFile*, sxEntry*) const {
  return nullptr;
}
sxBase* sxBase::readRef(sxFile*, sxEntry*) {
  return nullptr;
}
