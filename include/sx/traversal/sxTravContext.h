#pragma once

#include <cstdint>

#include <sx/containers/sxStack.h>
#include <sx/math/sxMatrixStack.h>
#include <sx/math/sxVolume.h>
#include <sx/nodes/sxGroup.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>
#include <sx/threads/sxStats.h>
#include <sx/traversal/sxTraitStack.h>
#include <sx/traversal/sxTravStack.h>

class sxGroup;
class sxMatrix;
class sxScene;
class sxViewpoint;

/// The state of one traversal: the path of groups, the matrix stacks, the
/// volume, cull-result and failed-ray stacks, the flags and masks that
/// traits set, the trait stack and the statistics object.
///
/// Traversers, cameras, listeners and colliders each carry one. A context
/// is used by one thread at a time. Its stacks are preallocated and only
/// grow; reset() keeps their storage, so a traversal allocates nothing once
/// the stacks have reached the depth of the graph. Paths deeper than 32766
/// groups are not entered (pushGroup refuses them).
class SX_API sxTravContext : public sxBase {
 public:
  SX_CLASS(sxTravContext, sxBase)

  /// Flag bits that traits set (the cull bits select per pass what to cull).
  enum FLAGS : unsigned {
    FLAG_TRANSPARENCY = 0x0040,
    FLAG_PRUNE = 0x0080,
    FLAG_CULL_MASK = 0x5500,
    FLAG_COLLIDER_TARGETS = 0x70000,
    FLAG_SORT_MASK = 0x300000,
    /// The flags after reset: every cull, target and sort bit.
    FLAGS_AFTER_RESET = 0x375500
  };

  /// Calls reset().
  sxTravContext();
  sxTravContext(const sxTravContext& other);
  sxTravContext& operator=(const sxTravContext& other);
  ~sxTravContext() override;

  /// Puts the per-walk state back: matrix stacks to the identity, the path,
  /// volume stacks emptied, one cull result (PARTIAL) and one failed-ray
  /// mask (0) pushed, the flags, collider mask, transition values, texture
  /// id and range-switch scale to their defaults, and the trait stack's
  /// stacks emptied. The pass mask, scene, viewpoint, trait stack and
  /// statistics object stay.
  void reset();

  // The path.
  /// Pushes onto the path and, when the group has a name, onto the named
  /// path. False (nothing pushed) when the path is full.
  /// Inline: every group of every walk comes through here.
  bool pushGroup(const sxGroup* group) {
    if (!travStack.push(group)) return false;
    if (group && group->getName()) namedTravStack.push(group);
    return true;
  }
  /// The popped group; null on an empty path.
  const sxGroup* popGroup() {
    const sxGroup* group = travStack.pop();
    if (group && group->getName()) namedTravStack.pop();
    return group;
  }
  const sxGroup* getGroup() const { return travStack.getTop(); }
  const sxTravStack* getTravStack() const { return &travStack; }
  const sxTravStack* getNamedTravStack() const { return &namedTravStack; }
  std::uintptr_t getTravStackID() const { return travStack.getID(); }

  // The matrices.
  void pushMatrix(const sxMatrix& m) { matrixStack.pushLoad(m); }
  /// Pushes the product of the current top with m.
  void pushMultMatrix(const sxMatrix& m) { matrixStack.pushMult(m); }
  /// Pushes m times the current top: m applied first (a node's local matrix).
  void pushPreMultMatrix(const sxMatrix& m) { matrixStack.push(), matrixStack.preMult(m); }
  void pushIdentMatrix() { matrixStack.pushIdent(); }
  void popMatrix() { matrixStack.pop(); }
  void pushInvertMatrix(const sxMatrix& m) { invMatrixStack.pushLoad(m); }
  void pushMultInvertMatrix(const sxMatrix& m) { invMatrixStack.pushMult(m); }
  void pushInvertIdentMatrix() { invMatrixStack.pushIdent(); }
  void popInvertMatrix() { invMatrixStack.pop(); }
  const sxMatrix& getMatrix() const { return matrixStack.getTop(); }
  const sxMatrix& getInvertMatrix() const { return invMatrixStack.getTop(); }
  /// The model matrix stack's change counter.
  std::uint16_t getMatrixID() const { return matrixStack.getID(); }
  const sxMatrixStack* getMatrixStack() const { return &matrixStack; }
  const sxMatrixStack* getInvertMatrixStack() const { return &invMatrixStack; }

  // Volumes being grown or tested (not owned).
  bool pushVolume(sxVolume* volume) { return volumeStack.push(volume); }
  sxVolume* popVolume() { return static_cast<sxVolume*>(volumeStack.pop()); }
  sxVolume* getVolume() const { return static_cast<sxVolume*>(volumeStack.getTop()); }

  // Containment of the current level against the view.
  bool pushCullResult(sxVolume::CONTAINMENT c) { return cullResultStack.push(toSlot(c)); }
  /// The popped value; 0 (OUTSIDE) when empty.
  sxVolume::CONTAINMENT popCullResult() {
    return sxVolume::CONTAINMENT(fromSlot(cullResultStack.pop()));
  }
  sxVolume::CONTAINMENT getCullResult() const {
    return sxVolume::CONTAINMENT(fromSlot(cullResultStack.getTop()));
  }

  // Per-level masks of the rays that have failed.
  /// Pushes a copy of the current mask (0 when empty).
  bool pushFailedRayMask() { return failedRayMaskStack.push(failedRayMaskStack.getTop()); }
  /// ORs mask into the top entry (nothing when empty).
  void addFailedRayMask(std::uint32_t mask) {
    failedRayMaskStack.setTop(toSlot(fromSlot(failedRayMaskStack.getTop()) | mask));
  }
  void popFailedRayMask() { failedRayMaskStack.pop(); }
  std::uint32_t getFailedRayMask() const {
    return std::uint32_t(fromSlot(failedRayMaskStack.getTop()));
  }

  // The flags that traits set.
  void setFlags(unsigned f) { flags = f; }
  unsigned getFlags() const { return flags; }
  void addFlags(unsigned f) { flags |= f; }
  void removeFlags(unsigned f) { flags &= ~f; }
  unsigned anyFlags(unsigned mask) const { return flags & mask; }
  bool allFlags(unsigned mask) const { return (flags & mask) == mask; }
  /// Sets FLAG_TRANSPARENCY when the flags hold both 0x0002 and 0x0004 or
  /// both 0x0001 and 0x0008, clears it otherwise.
  void setTransparencyFlags();

  /// The pass mask compared with the groups' content bits (0x7E00 at first).
  void setTravMask(unsigned mask) { travMask = mask; }
  unsigned getTravMask() const { return travMask; }
  void setColliderMask(unsigned mask) { colliderMask = mask; }
  unsigned getColliderMask() const { return colliderMask; }
  void setRangeSwitchScale(float s) { rangeSwitchScale = s; }
  float getRangeSwitchScale() const { return rangeSwitchScale; }
  void setTextureID(int id) { textureID = id; }
  int getTextureID() const { return textureID; }
  void setTransitionScale(float s) { transitionScale = s; }
  float getTransitionScale() const { return transitionScale; }
  /// A transition trait's mode (sxTransition).
  void setTransitionMode(int mode) { transitionMode = mode; }
  int getTransitionMode() const { return transitionMode; }
  void setScene(sxScene* s) { scene = s; }
  sxScene* getScene() const { return scene; }
  /// Where the pass looks from: range switches measure distances from it,
  /// billboards turn towards it, transforms cull against its view volume.
  /// Set by the camera, listener or collider running the pass (not owned);
  /// null for traversers unless the application sets one.
  void setViewpoint(const sxViewpoint* v) { viewpoint = v; }
  const sxViewpoint* getViewpoint() const { return viewpoint; }

  /// Referenced; the old one is released.
  void setTraitStack(sxTraitStack* stack) { traitStack = stack; }
  sxTraitStack* getTraitStack() const { return traitStack.get(); }
  /// Referenced; the old one is released.
  void setStats(sxStats* s) { stats = s; }
  sxStats* getStats() const { return stats.get(); }

 private:
  // Small values ride in the pointer slots of the stacks.
  static void* toSlot(std::uintptr_t v) { return reinterpret_cast<void*>(v); }
  static std::uintptr_t fromSlot(const void* p) { return reinterpret_cast<std::uintptr_t>(p); }

  sxScene* scene = nullptr;
  const sxViewpoint* viewpoint = nullptr;
  sxMatrixStack matrixStack{16};
  sxMatrixStack invMatrixStack{16};
  sxStack volumeStack{8};
  sxStack failedRayMaskStack{4};
  sxTravStack travStack{8};
  sxTravStack namedTravStack{8};
  sxStack cullResultStack{8};
  unsigned travMask = 0x7E00;
  unsigned flags = FLAGS_AFTER_RESET;
  unsigned colliderMask = 0xFFFFFFFFu;
  float transitionScale = 0.0f;
  int transitionMode = 0;
  int textureID = 0;
  float rangeSwitchScale = 1.0f;
  sxRef<sxTraitStack> traitStack;
  sxRef<sxStats> stats;
};
