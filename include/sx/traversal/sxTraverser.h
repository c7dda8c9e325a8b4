#pragma once

#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>

class sxGroup;
class sxTravContext;
class sxType;

/// Walks a scene graph depth first, children in order, and decides at every
/// group whether to go on, skip the group's children, or stop.
///
/// Application traversers derive from it and override apply and preApply.
/// A traverser is used by one thread at a time and needs a context
/// (setTravContext) before traverse.
class SX_API sxTraverser : public sxBase {
 public:
  SX_CLASS(sxTraverser, sxBase)

  /// What apply and preApply answer for a group.
  enum TRAV_STATE {
    TRAV_CONTINUE = 0,  ///< visit the children, then the next sibling
    TRAV_PRUNE = 1,     ///< skip the children (any value but 0 and 2 acts the same)
    TRAV_STOP = 2       ///< end the whole traversal, leaving the path on the context
  };

  sxTraverser() = default;
  /// Shares the source's context and break points.
  sxTraverser(const sxTraverser& source);
  ~sxTraverser() override;

  /// Resets the context, then walks root; nothing for a null root.
  virtual void traverse(sxGroup* root);
  /// Resets the context when one is set.
  virtual void reset();
  /// The break points: TRAV_STOP at the break-point group or at the first
  /// group of a break-point type; TRAV_CONTINUE otherwise.
  virtual TRAV_STATE apply(sxGroup* group);
  /// Asked before a group is entered; non-zero leaves it out. 0 here.
  virtual TRAV_STATE preApply(sxGroup* group);
  /// Referenced; null clears it.
  virtual void setGroupBreakPoint(sxGroup* group);
  /// Stored without a reference: types live as long as their classes.
  virtual void setIsOfTypeBreakPoint(const sxType* type);
  virtual void setExactTypeBreakPoint(const sxType* type);
  /// Referenced; the old context is released.
  virtual void setTravContext(sxTravContext* context);

  sxGroup* getGroupBreakPoint() const { return groupBreakPoint.get(); }
  const sxType* getIsOfTypeBreakPoint() const { return isOfTypeBreakPoint; }
  const sxType* getExactTypeBreakPoint() const { return exactTypeBreakPoint; }
  sxTravContext* getTravContext() const { return travContext.get(); }

 private:
  sxRef<sxGroup> groupBreakPoint;
  const sxType* isOfTypeBreakPoint = nullptr;
  const sxType* exactTypeBreakPoint = nullptr;
  sxRef<sxTravContext> travContext;
};
