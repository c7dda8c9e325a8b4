#include <sx/nodes/sxGroup.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include "persist/sxFileState.h"

sxEntry* sxGroup::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxBase::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (!e) return created;
  e->writeShort(short(travFlags));
  e->writeShort(short(nodeFlags));
  e->writeInt(children.getNum());
  for (int i = 0; i < children.getNum(); ++i) children[i]->writeRef(file, e);
  return created;
}

sxEntry* sxGroup::read(sxFile* file, sxEntry* entry) {
  removeChildren();
  sxEntry* e = sxBase::read(file, entry);
  if (!e) return nullptr;
  travFlags = std::uint16_t(e->readShort());
  nodeFlags = std::uint16_t(e->readShort());
  const int count = e->readInt();
  for (int i = 0; i < count; ++i) {
    const int at = e->getCursor();
    sxBase* obj = readRef(file, e);
    // A damaged count ends with the data.
    if (e->getCursor() == at) break;
    if (!obj) continue;
    // Only groups are children; whatever else a hostile or damaged file
    // puts there (or a child that would form a cycle or a duplicate) is
    // left out, and a thing nobody else took is released with the file.
    if (!obj->isOfType(sxGroup::getClassType()) || !addChild(static_cast<sxGroup*>(obj)))
      sxiFileAccess::drop(file, obj);
  }
  return e;
}
