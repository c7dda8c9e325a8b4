#pragma once

#include <vector>

#include <sx/math/sxMatrix.h>
#include <sx/math/sxVec3.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>
#include <sx/traversal/sxAudioTrait.h>
#include <sx/traversal/sxTraitStack.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/traversal/sxTravTrait.h>
#include <sx/traversal/sxViewpoint.h>

class sxEmitter;
class sxGroup;

/// The hearing side of the audio pass: a placement, a traversal context of
/// its own, and the traits that govern what it hears.
///
/// traverse() walks a graph; every playing emitter it reaches hands its
/// parameters to the setters below (only after they changed, see
/// sxEmitter) and then calls outputEmitter() with its position. The
/// kernel's listener keeps nothing: its setters do nothing, its getters
/// answer the emitter's own values (or the defaults), and outputEmitter does
/// nothing.
///
/// An audio plug-in derives from it and overrides the setters, the getters
/// and outputEmitter() to drive its sound device. It keeps its per-emitter
/// state with setEmitterData (a listener with data for an emitter gets its
/// parameters only after they changed; one without gets them on every
/// pass), calls hasBeenUpdated once it has taken an emitter's parameters,
/// and hasStopped when a wave that does not loop has ended. The scales
/// that the audio traits set (setPriorityScale, setAudioLevelScale) are
/// those in force for the emitter output next: the listener's own audio
/// traits, replaced below styles that carry audio traits of their own.
class SX_API sxListener : public sxBase {
 public:
  SX_CLASS(sxListener, sxBase)
  /// Identity placement, no traits, and a context with a trait stack of
  /// the audio and traversal families (with their default traits).
  sxListener();
  /// Copies the placement and shares the traits; the copy gets a context of
  /// its own.
  sxListener(const sxListener& source);
  ~sxListener() override;

  /// The listener's record must end its entry: the number of traversal
  /// traits that bounds the audio references is taken from the record's
  /// size.
  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  // --- traits

  /// Appends the trait and takes a reference; false for null or a trait
  /// held already.
  virtual bool addTrait(sxTravTrait* trait);
  virtual bool addTrait(sxAudioTrait* trait);
  /// Releases the trait; false when the listener lacks it.
  virtual bool removeTrait(sxTravTrait* trait);
  virtual bool removeTrait(sxAudioTrait* trait);
  /// Referenced; the old one is released. Null makes the passes do nothing.
  virtual void setTravContext(sxTravContext* context);
  /// Pushes the traversal traits onto the context's trait stack in order;
  /// unless they set the prune bit, pushes the audio traits too and hands
  /// the audio traits in force (or the defaults) to the scale setters.
  virtual void applyTraits();

  int getNumTravTraits() const { return int(travTraits.size()); }
  /// Precondition: 0 <= i < getNumTravTraits().
  sxTravTrait* getTravTrait(int i) const { return travTraits[std::size_t(i)].get(); }
  int getNumAudioTraits() const { return int(audioTraits.size()); }
  /// Precondition: 0 <= i < getNumAudioTraits().
  sxAudioTrait* getAudioTrait(int i) const { return audioTraits[std::size_t(i)].get(); }
  /// The context of the listener pass. Its pass mask starts as the
  /// playing-emitter bit, so the pass only walks towards emitters that play.
  sxTravContext* getTravContext() const { return travContext.get(); }

  // --- placement: the matrix, xyz and hpr stay consistent

  /// Sets the matrix's translation.
  virtual void setXYZ(const sxVec3& xyz);
  virtual void setXYZ(float x, float y, float z);
  /// Replaces the matrix's rotation (heading, pitch, roll in degrees).
  virtual void setHPR(const sxVec3& hpr);
  virtual void setHPR(float h, float p, float r);
  /// Derives xyz from the translation and hpr from the rotation.
  virtual void setMatrix(const sxMatrix& m);
  const sxMatrix& getMatrix() const { return matrix; }
  const sxVec3& getXYZ() const { return xyz; }
  const sxVec3& getHPR() const { return hpr; }
  /// The placement as seen by the pass (range switches measure from it).
  const sxViewpoint& getViewpoint() const { return viewpoint; }

  // --- what an emitter hands over; the kernel's setters do nothing

  virtual void setWave(sxEmitter* emitter, const char* name);
  virtual const char* getWave(const sxEmitter* emitter) const;
  virtual void setLooping(sxEmitter* emitter, bool looping);
  virtual bool getLooping(const sxEmitter* emitter) const;
  virtual void setMinDistance(sxEmitter* emitter, float distance);
  virtual float getMinDistance(const sxEmitter* emitter) const;
  virtual void setMaxDistance(sxEmitter* emitter, float distance);
  virtual float getMaxDistance(const sxEmitter* emitter) const;
  virtual void setPriority(sxEmitter* emitter, float priority);
  virtual float getPriority(const sxEmitter* emitter) const;
  /// Set by sxAudioPriorityScale; the kernel answers 1.
  virtual void setPriorityScale(float scale);
  virtual float getPriorityScale() const { return 1.0f; }
  virtual void setAudioLevel(sxEmitter* emitter, float level);
  virtual float getAudioLevel(const sxEmitter* emitter) const;
  /// Set by sxAudioLevelScale; the kernel answers 1.
  virtual void setAudioLevelScale(float scale);
  virtual float getAudioLevelScale() const { return 1.0f; }
  virtual void setPan(sxEmitter* emitter, float pan);
  virtual float getPan(const sxEmitter* emitter) const;
  virtual void setPitch(sxEmitter* emitter, float pitch);
  virtual float getPitch(const sxEmitter* emitter) const;
  virtual void setDoppler(sxEmitter* emitter, bool on);
  virtual bool getDoppler(const sxEmitter* emitter) const;
  /// Called for every playing emitter on every pass, after its parameters.
  /// position is in world space for a positionable emitter (its position
  /// transformed by the matrices above it), otherwise the emitter's own
  /// position relative to the listener. Nothing in the kernel.
  virtual void outputEmitter(sxEmitter* emitter, const sxVec3& position);

  /// The listener pass over root: resets the context, points it at this
  /// listener's viewpoint and at root when root is a scene, applies the
  /// traits, then (unless they prune) calls the scene's listener direct
  /// calls (first), root->apply(this), and the scene's listener direct
  /// calls (after). Nothing for a null root or without a context.
  virtual void traverse(sxGroup* root);

 protected:
  /// For audio back ends: the wave has ended (the emitter stops playing and
  /// its data is cleared), the parameters were taken (EMITTER_CHANGED is
  /// cleared), and the back end's own state for an emitter. Each ignores a
  /// null emitter.
  static void hasStopped(sxEmitter* emitter);
  static void hasBeenUpdated(sxEmitter* emitter);
  static void setEmitterData(sxEmitter* emitter, void* data);
  static void* getEmitterData(const sxEmitter* emitter);
  static unsigned getEmitterFlags(const sxEmitter* emitter);

 private:
  /// The families of the listener's trait stack.
  static constexpr unsigned stackTypes = sxTraitStack::STACK_AUDIO | sxTraitStack::STACK_TRAV;
  static sxTravContext* newContext();

  void placementChanged() { viewpoint.setMatrix(matrix); }

  sxMatrix matrix;
  sxVec3 xyz{0.0f, 0.0f, 0.0f};
  sxVec3 hpr{0.0f, 0.0f, 0.0f};
  sxViewpoint viewpoint;
  std::vector<sxRef<sxAudioTrait>> audioTraits;
  std::vector<sxRef<sxTravTrait>> travTraits;
  sxRef<sxTravContext> travContext;
};
