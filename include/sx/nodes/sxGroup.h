#pragma once

#include <cstdint>

#include <sx/containers/sxList.h>
#include <sx/nodes/sxParentList.h>
#include <sx/object/sxBase.h>
#include <sx/traversal/sxTraverser.h>

class sxCamera;
class sxCollider;
class sxListener;
class sxScene;
class sxTravContext;
class sxType;
class sxVolume;

/// In a protected section of a node kind whose copies need nothing beyond
/// its copy constructor: copyGroup and cloneGroup through newCopyOf. (A
/// style's copies share its traits, an emitter has nothing a clone could
/// share: the copy constructor says what a copy takes.)
#define SX_GROUP_COPIES                  \
  sxGroup* copyGroup() const override {  \
    return newCopyOf(*this, false);      \
  }                                      \
  sxGroup* cloneGroup() const override { \
    return newCopyOf(*this, true);       \
  }

/// The interior node of the scene graph and the base of every node kind.
///
/// A group holds an ordered list of children, each with one reference, and
/// a list of its parents, which it does not reference. The graph is acyclic;
/// a node with several parents is a shared instance. B is among A's children
/// exactly as often as A is among B's parents: once.
///
/// Every edit keeps 16 bits of traversal flags up to date along the parents
/// (dirtyUp, cleanUp), so that each pass visits only the sub-graphs that need
/// it. Node kinds override the protected notifications to keep their own
/// bits.
///
/// Edits take no lock. Edits of a graph that other threads traverse are
/// bracketed by the scene's modification lock, which the caller takes.
/// Several threads may traverse one graph at once, each with its own
/// traversal context.
///
/// A traverser may edit the graph it walks from its apply or preApply, on
/// the walking thread, and it is safe: groups released meanwhile (the group
/// being visited among them) are destroyed only when sxTraverser::traverse
/// returns. The walk reads each children list afresh at every step, so a
/// child added after the current one is visited and one removed before it is
/// not; removing the current child shifts its next sibling into its place,
/// and that sibling is skipped in this walk.
class SX_API sxGroup : public sxBase {
 public:
  SX_CLASS(sxGroup, sxBase)

  /// How updateSharedInstances treats a node with several parents.
  enum NODE_FLAGS {
    NODE_CLONE_INSTANCES = 0,  ///< each extra parent gets a clone
    NODE_SHARE_INSTANCES = 1,  ///< the node stays shared
    NODE_COPY_INSTANCES = 2    ///< each extra parent gets a copy (any other value)
  };

  /// Bits of the traversal flags.
  enum TRAV_FLAGS : unsigned {
    TRAV_FLAG_UPDATE = 0x0001,   ///< the node or something below needs an update pass
    TRAV_FLAG_ADDED = 0x0002,    ///< a node was attached here or below
    TRAV_FLAG_REMOVED = 0x0004,  ///< a node was detached here or below
    TRAV_FLAG_SHARED = 0x0008,   ///< a node with several parents lies here or below
    TRAV_FLAG_MATRIX = 0x0010,   ///< a transform changed here or below
    TRAV_FLAG_FENCES = 0x0020,   ///< fence bounds below need recomputing
    /// Content bits: the sub-graph holds a node that some pass must visit.
    TRAV_CONTENT_MASK = 0x7E00,
    /// The bits that update() keeps.
    TRAV_KEPT_BY_UPDATE = 0xFF08,
    /// update() descends into children that carry one of these.
    TRAV_UPDATE_MASK = 0x00F1
  };

  sxGroup() = default;
  /// Copies the sxBase part only; children and parents are not copied (use
  /// makeCopy or makeClone for sub-graphs).
  sxGroup(const sxGroup& source);
  ~sxGroup() override;

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  // --- structure queries

  int getNumChildren() const { return children.getNum(); }
  /// Precondition: 0 <= i < getNumChildren().
  sxGroup* getChild(int i) const { return children[i]; }
  /// Searches from the last child down; -1 when absent.
  int getChildIndex(const sxGroup* child) const;
  bool hasChild(const sxGroup* child) const;
  int getNumParents() const { return parents.getNum(); }
  /// Precondition: 0 <= i < getNumParents().
  sxGroup* getParent(int i) const { return parents.get(i); }
  bool hasParent(const sxGroup* parent) const { return parent && parents.contains(parent); }
  /// True when node is a child or a descendant of this group.
  bool hasDescendant(sxGroup* node) const;
  /// True when this node itself or any descendant is of type or derives
  /// from it.
  bool hasDescendantOfType(sxType* type) const;
  /// Depth-first pre-order search, ignoring case. With start null the first
  /// match; otherwise the second match in pre-order (start itself is never
  /// compared: only its being given matters).
  sxGroup* findGroup(const char* name, const sxGroup* start = nullptr);

  // --- flags

  unsigned getTravFlags() const { return travFlags; }
  unsigned anyTravFlags(unsigned mask) const { return travFlags & mask; }
  bool allTravFlags(unsigned mask) const { return (travFlags & mask) == mask; }
  NODE_FLAGS getNodeFlags() const { return NODE_FLAGS(nodeFlags); }
  /// Stores the value, nothing else.
  virtual void setNodeFlags(NODE_FLAGS flags);

  // --- copies

  /// A new sub-graph: every node copied. Shared instances below become one
  /// copy per path, unless updateSharedInstances says otherwise.
  sxGroup* makeCopy() const;
  /// As makeCopy, but leaf node kinds share their data with the source.
  sxGroup* makeClone() const;

  // --- graph edits; each returns false and changes nothing for a null
  // node, the group itself, or a node whose attachment would break the
  // graph (a duplicate child, an ancestor that would form a cycle, an index
  // past the end).

  virtual bool addChild(sxGroup* child);
  /// index may equal getNumChildren() (append).
  virtual bool insertChild(int index, sxGroup* child);
  virtual bool removeChild(sxGroup* child);
  virtual bool removeChildren();
  /// Takes this node out and reconnects its children to its parents: a
  /// single child takes this node's place, several are appended.
  virtual bool remove();
  /// other takes this node's place and inherits its children.
  virtual bool replace(sxGroup* other);
  /// other takes this node's place; the children stay with this node.
  virtual bool replaceGraph(sxGroup* other);
  /// Removes this node from all its parents.
  virtual bool detach();
  /// newNode becomes the only child, and the parent of the former children.
  virtual bool insertBelow(sxGroup* newNode);
  /// newNode takes this node's place in every parent, with this node as its
  /// child.
  virtual bool insertAbove(sxGroup* newNode);
  /// False for groups; switches answer true.
  virtual bool areChildrenOrdered() const;

  // --- passes

  /// The descent of every traversal: preApply (unless skipped), then the
  /// traverser's apply decides whether to visit the children.
  virtual sxTraverser::TRAV_STATE apply(sxTraverser* traverser, bool skipPreApply);
  /// Passes of the collider, listener and camera plug-ins: children whose
  /// content bits meet the context's pass mask are visited.
  virtual void apply(sxCollider* collider) const;
  virtual void apply(sxListener* listener) const;
  virtual void apply(sxCamera* camera) const;
  /// Direct calls of scenes and switches; nothing for a group.
  virtual void applyDirect(sxCollider* collider, bool flag) const;
  virtual void applyDirect(sxListener* listener, bool flag) const;
  virtual void applyDirect(sxCamera* camera, bool flag) const;
  virtual void updateDirect(sxScene* scene, bool flag);
  /// Lowers the update bits, visiting children that need it.
  virtual void update(sxTravContext* context);
  /// Recomputes fence bounds below; node kinds with extent grow the volume
  /// on top of the context's volume stack.
  virtual void updateFences(sxTravContext* context);
  /// Turns shared instances into private nodes as their node flags say.
  virtual void updateSharedInstances();
  /// The bounds of the sub-graph, by a fence pass on the calling thread's
  /// context (or a temporary one).
  virtual void getBoundingVolume(sxVolume& volume);

 protected:
  /// One node of this object's class, entered in the group mapping and
  /// filled by copy or clone. Every node kind overrides both.
  virtual sxGroup* copyGroup() const;
  virtual sxGroup* cloneGroup() const;
  /// Notifications: the node (or an ancestor) was attached below parent, or
  /// detached from it.
  virtual void addedTo(sxGroup* parent);
  virtual void removedFrom(sxGroup* parent);
  /// The children list changed at index: a child was linked there (the
  /// later ones moved up) or unlinked from there (the later ones moved
  /// down). Every edit ends here, also those that bypass the virtual edits
  /// (remove, replace, a child destroyed while still linked), so kinds that
  /// keep data per child follow the children with it. A child taking
  /// another's slot (replace, insertAbove) keeps the slot's data. Called
  /// before the notifications of the edit; must not edit the graph.
  virtual void childLinked(int index);
  virtual void childUnlinked(int index);
  /// Raises bits here and on every ancestor that lacks some of the flags.
  virtual void dirtyUp(unsigned bits);
  /// Lowers bits that no child carries any more, and on the parents.
  virtual void cleanUp(unsigned bits);

  void setTravFlags(unsigned flags) { travFlags = std::uint16_t(flags); }
  void addTravFlags(unsigned flags) { travFlags = std::uint16_t(travFlags | flags); }
  void removeTravFlags(unsigned flags) { travFlags = std::uint16_t(travFlags & ~flags); }

  /// Fill this node from src: the sxBase part, the flags, and copies or
  /// clones of src's children.
  void copy(const sxGroup& src);
  void clone(const sxGroup& src);

  /// What every kind's copyGroup and cloneGroup do: a new node made by T's
  /// copy constructor (the kind's own fields; a group's copy constructor
  /// takes no children), entered in the group mapping, then filled by copy
  /// or clone.
  template <class T>
  static T* newCopyOf(const T& src, bool cloning) {
    T* node = new T(src);
    if (!node) return nullptr;
    addGroupMapping(&src, node);
    if (cloning)
      node->clone(src);
    else
      node->copy(src);
    return node;
  }

  /// The start of every traverser pass of a node kind: false, with the
  /// state to hand back in result, when there is no traverser or its
  /// preApply (unless skipped) turns this node away.
  bool entersTraversal(sxTraverser* traverser, bool skipPreApply, sxTraverser::TRAV_STATE& result) {
    result = sxTraverser::TRAV_CONTINUE;
    if (!traverser) return false;
    if (!skipPreApply) result = traverser->preApply(this);
    return result == sxTraverser::TRAV_CONTINUE;
  }

  /// The group mapping of the copy in progress (under the group lock).
  static void addGroupMapping(const sxGroup* from, sxGroup* to);
  /// Lets action nodes at and below node point at the copies.
  static void resolveGroupMapping(sxGroup* node);

 private:
  friend struct sxiGroupEdits;

  sxGroup* findGroupRec(const char* name, const sxGroup* start, bool& found);
  void copyOrClone(const sxGroup& src, bool cloning);
  sxGroup* makeCopyOrClone(bool cloning) const;

  sxTList<sxGroup*> children;
  sxParentList parents;
  std::uint16_t travFlags = 0;
  std::uint16_t nodeFlags = 0;
};
