#pragma once

#include <vector>

#include <sx/math/sxVec3.h>
#include <sx/nodes/sxSwitch.h>
#include <sx/object/sxMemory.h>

class sxCamera;
class sxCollider;
class sxEntry;
class sxFile;
class sxListener;
class sxTravContext;

/// A switch that picks its child by the distance from the viewpoint to a
/// centre: level of detail.
///
/// Every child has a range record that follows it through every edit of
/// the children: range, the far limit of the child's band in world units
/// (the bands start where the one before ends), and transition, the
/// half-width of a blend zone around it. A new child's range is 1000 past
/// the one before it (1000 for the first child, whose blend factor is
/// 0.0004 by convention), with the transition of the one before (50).
///
/// The distance is measured from the pass context's viewpoint to the
/// centre placed by the context's matrix, scaled by the context's
/// range-switch scale. Without a viewpoint the switch is a plain group.
/// With transitions enabled, the camera and listener passes blend the two
/// children of a zone through the context's transition scale and mode;
/// traversers and colliders visit the nearer band's child only.
///
/// The centre is computed by the fence pass (the centre of the children's
/// bounds) until setCenter sets it.
class SX_API sxRangeSwitch : public sxSwitch {
 public:
  SX_CLASS(sxRangeSwitch, sxSwitch)

  sxRangeSwitch() = default;
  /// Copies the centre and flags; the range records come with the children
  /// (makeCopy, makeClone).
  sxRangeSwitch(const sxRangeSwitch& source);

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  /// The far limit of child index's band. False, changing nothing, for an
  /// index outside the children or a negative, infinite or NaN range.
  virtual bool setRange(int index, float range);
  /// The half-width of the blend zone around child index's range; 0 means
  /// no blend zone. False, changing nothing, for an index outside the
  /// children or a negative, infinite or NaN width.
  virtual bool setTransition(int index, float transition);
  /// Fixes the centre (in the switch's space) and asks for a fence pass.
  virtual void setCenter(const sxVec3& center);
  /// Lets the fence pass compute the centre again.
  virtual void autoCenter();
  /// Blend zones on or off (the switch's fade clock is not used).
  void enableTransition(bool on) override;

  /// 0 outside the children.
  float getRange(int index) const;
  float getTransition(int index) const;
  const sxVec3& getCenter() const { return center; }
  bool isTransitionEnabled() const { return transitionEnabled; }

  /// Without a viewpoint the group descent; otherwise only the child of
  /// the band the distance falls in, entered with preApply skipped, and the
  /// traverser's apply is not called for the switch itself.
  sxTraverser::TRAV_STATE apply(sxTraverser* traverser, bool skipPreApply) override;
  void apply(sxCamera* camera) const override;
  void apply(sxListener* listener) const override;
  void apply(sxCollider* collider) const override;
  /// Computes the centre unless it was set.
  void updateFences(sxTravContext* context) override;

 protected:
  sxGroup* copyGroup() const override;
  sxGroup* cloneGroup() const override;
  void childLinked(int index) override;
  void childUnlinked(int index) override;
  void adoptPerChild(const sxSwitch& src) override;

 private:
  struct Range {
    float range;
    float transition;
    float blendFactor;  ///< 1 / (2 x transition); 0 without a blend zone
  };

  /// The children to show at distance: first (-1 for none) and the blend
  /// target second (-1 for none); returns the blend factor, 0 at
  /// range - transition and 1 at range + transition.
  float calcSwitch(float distance, sxTravContext* context, short& first, short& second) const;
  /// calcSwitch for the context's viewpoint; false without one.
  bool pick(sxTravContext* context, short& first, short& second, float& factor) const;
  template <class Agent>
  void applyRange(Agent* agent, bool fade) const;

  std::vector<Range, sxAllocator<Range>> ranges;
  sxVec3 center{0.0f, 0.0f, 0.0f};
  bool transitionEnabled = false;
  bool centerSet = false;
};
