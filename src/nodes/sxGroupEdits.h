#pragma once

#include <sx/nodes/sxGroup.h>

#include <cstddef>
#include <unordered_set>
#include <vector>

// The pieces shared by the group's edits, copies and passes. A friend of
// sxGroup, so that node kinds' overrides stay the only public way in.
struct sxiGroupEdits {
  // Asks the memory system for the children before a pass reaches them: in
  // a large graph every group is a cache miss, and the wait for one child
  // then overlaps the work on its elder siblings.
  static void prefetchChildren(const sxGroup* g) {
#if defined(__GNUC__)
    const int n = g->children.getNum() < 16 ? g->children.getNum() : 16;
    for (int i = 0; i < n; ++i) __builtin_prefetch(g->children[i]);
#else
    (void)g;
#endif
  }
  // The rest of the wait, pipelined along the siblings a pass visits next:
  // a child's children array is a block of its own, reached only through
  // the child. While the pass works below one child, the children of the
  // next sibling (whose array the step before asked for) and the array of
  // the one after are on their way. step is +1 for a pass that visits the
  // children first to last, -1 for one that goes from the last.
  static void prefetchSiblings(const sxGroup* g, int i, int step) {
#if defined(__GNUC__)
    const int n = g->children.getNum();
    const int next = i + step, after = i + 2 * step;
    if (next >= 0 && next < n) prefetchChildren(g->children[next]);
    if (after >= 0 && after < n) {
      const sxList& list = static_cast<const sxGroup*>(g->children[after])->children;
      if (list.getNum() > 0) __builtin_prefetch(&list[0]);
    }
#else
    (void)g;
    (void)i;
    (void)step;
#endif
  }
  static sxTList<sxGroup*>& children(sxGroup* g) {
    return g->children;
  }
  static sxParentList& parents(sxGroup* g) {
    return g->parents;
  }
  static void addTravFlags(sxGroup* g, unsigned flags) {
    g->addTravFlags(flags);
  }

  // The added-to walk over node's sub-graph, then node->addedTo(parent):
  // every node below receives addedTo, deepest first, children from the
  // last to the first. Iterative, so a deep sub-graph cannot exhaust the
  // stack.
  static void addedToWalk(sxGroup* node, sxGroup* parent);
  // Links child below parent at index (index == count appends): the
  // parent's reference, both lists and the notifications. No checks.
  static bool attach(sxGroup* parent, int index, sxGroup* child);
  // True when ancestor is node itself or lies above it, found by walking up
  // the parents lists only (never down a sub-graph).
  static bool isAncestor(const sxGroup* ancestor, const sxGroup* node);
  // Whether child is linked below parent, searched in the shorter of the
  // two lists: a shared instance with thousands of parents gains a new one
  // (which has few children) at no cost per parent.
  static bool isLinked(const sxGroup* parent, const sxGroup* child);
  // True when attaching child below parent would break the graph: a null
  // node, the parent itself, a duplicate, or a cycle.
  static bool refusesChild(const sxGroup* parent, const sxGroup* child);
  // In parent's children, newNode takes old's slot; parent moves from old's
  // parents (ordered or not) to newNode's, newNode is referenced, notified
  // with the added-to walk, and old is told and released.
  static void takeSlot(sxGroup* parent, sxGroup* old, sxGroup* newNode, bool orderedRemoval);
  // True when attaching newNode in old's place under old's parents would
  // break the graph: a null node, old itself, an ancestor of old (a cycle),
  // a descendant of old unless allowed (when old keeps its children, it
  // no longer lies above), or a parent of old that already has newNode as
  // a child.
  static bool refusesInPlaceOf(const sxGroup* old, const sxGroup* newNode,
                               bool allowDescendant = false);
  // Withdraws node from the direct-call lists of every scene at a root
  // above parent.
  static void withdrawFromScenes(sxGroup* parent, sxGroup* node);

  // Depth first from root, each node before its children, the children in
  // order (pre-order) or from the last to the first. Returns the first node
  // for which visit answers true, null when none does. An explicit stack,
  // so that a graph of any depth can be walked.
  template <class Visit>
  static sxGroup* depthFirst(const sxGroup* root, bool childrenInOrder, Visit&& visit) {
    std::vector<sxGroup*, sxAllocator<sxGroup*>> todo{const_cast<sxGroup*>(root)};
    while (!todo.empty()) {
      sxGroup* g = todo.back();
      todo.pop_back();
      if (visit(g)) return g;
      const int n = g->children.getNum();
      if (childrenInOrder)
        for (int i = n - 1; i >= 0; --i) todo.push_back(g->children[i]);
      else
        for (int i = 0; i < n; ++i) todo.push_back(g->children[i]);
    }
    return nullptr;
  }

  // Calls visit on from and on each of its ancestors once, until visit
  // returns true (then true). A plain chain of single parents is followed
  // without allocating; past the first shared instance a visited set keeps
  // the walk linear in the number of ancestors.
  template <class Visit>
  static bool walkUp(const sxGroup* from, Visit&& visit) {
    const sxGroup* g = from;
    for (;;) {
      if (visit(g)) return true;
      const int n = g->parents.getNum();
      if (n == 0) return false;
      if (n > 1) break;
      g = g->parents.get(0);
    }
    std::vector<const sxGroup*, sxAllocator<const sxGroup*>> todo;
    std::unordered_set<const sxGroup*> seen{g};
    for (int i = 0; i < g->parents.getNum(); ++i) todo.push_back(g->parents.get(i));
    while (!todo.empty()) {
      const sxGroup* a = todo.back();
      todo.pop_back();
      if (!seen.insert(a).second) continue;
      if (visit(a)) return true;
      for (int i = 0; i < a->parents.getNum(); ++i) todo.push_back(a->parents.get(i));
    }
    return false;
  }
};

// A copy of a parents or children list, for edits that change the list
// they walk. Room for a few nodes on the stack; more go to the heap.
class sxiGroupSnapshot {
 public:
  explicit sxiGroupSnapshot(const sxParentList& parents);
  explicit sxiGroupSnapshot(const sxTList<sxGroup*>& children);
  ~sxiGroupSnapshot();
  sxiGroupSnapshot(const sxiGroupSnapshot&) = delete;
  sxiGroupSnapshot& operator=(const sxiGroupSnapshot&) = delete;
  int size() const { return count; }
  sxGroup* operator[](int i) const { return items[i]; }
  // False when memory ran out; the snapshot is then empty.
  bool valid() const { return items != nullptr; }

 private:
  bool reserve(int n);

  sxGroup* local[8];
  sxGroup** items;
  int count;
};
