#pragma once

#include <sx/containers/sxList.h>
#include <sx/nodes/sxGroup.h>
#include <sx/traversal/sxAudioTrait.h>
#include <sx/traversal/sxTravTrait.h>
#include <sx/traversal/sxTraverser.h>
#include <sx/traversal/sxVisualTrait.h>

/// A group that carries traits governing its whole sub-graph.
///
/// A traversal entering the style pushes its traversal traits onto the
/// context's trait stack; when they leave the prune bit set, nothing below
/// the style is visited. Otherwise the visual and audio traits are pushed
/// too, the children are visited, and everything is popped in reverse
/// order. The style holds a reference on each trait and at most one trait
/// per trait type.
class SX_API sxStyle : public sxGroup {
 public:
  SX_CLASS(sxStyle, sxGroup)
  sxStyle() = default;
  /// Shares the source's traits (each referenced once more).
  sxStyle(const sxStyle& source);
  ~sxStyle() override;

  sxTraverser::TRAV_STATE apply(sxTraverser* traverser, bool skipPreApply) override;
  /// The camera, listener and collider passes push and pop the traits the
  /// same way around the group pass.
  void apply(sxCamera* camera) const override;
  void apply(sxListener* listener) const override;
  void apply(sxCollider* collider) const override;

  /// After the group fields: the visual, audio and traversal traits, each
  /// as a count followed by references. Reading replaces the traits; an
  /// object of the wrong family in a list is left out.
  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  /// Appends the trait and takes a reference; a trait of the same type
  /// that the style held before is then removed. False for null and for a
  /// trait the style holds already.
  virtual bool addTrait(sxVisualTrait* trait);
  virtual bool addTrait(sxAudioTrait* trait);
  virtual bool addTrait(sxTravTrait* trait);
  /// Removes the trait and releases it; false when the style lacks it.
  virtual bool removeTrait(sxVisualTrait* trait);
  virtual bool removeTrait(sxAudioTrait* trait);
  virtual bool removeTrait(sxTravTrait* trait);

  const sxTList<sxVisualTrait*>& getVisualTraits() const { return visualTraits; }
  const sxTList<sxAudioTrait*>& getAudioTraits() const { return audioTraits; }
  const sxTList<sxTravTrait*>& getTravTraits() const { return travTraits; }

 protected:
  SX_GROUP_COPIES

 private:
  void releaseTraits();
  /// Pushes the traits onto the context's trait stack, runs pass unless
  /// the traversal traits prune, pops them; pass answers whether to pop
  /// (false after a stop).
  template <class Pass>
  bool withTraits(sxTravContext* ctx, Pass&& pass) const;
  template <class Agent>
  void passWithTraits(Agent* agent) const;

  sxTList<sxVisualTrait*> visualTraits;
  sxTList<sxAudioTrait*> audioTraits;
  sxTList<sxTravTrait*> travTraits;
};
