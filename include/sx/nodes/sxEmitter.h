#pragma once

#include <optional>
#include <string>

#include <sx/math/sxVec3.h>
#include <sx/nodes/sxGroup.h>

class sxListener;
class sxMatrix;

/// A sound source in the scene graph: a named wave played at a position.
///
/// The emitter keeps the state and the bookkeeping; producing sound is the
/// business of a listener supplied by an audio plug-in (see sxListener).
/// Every emitter carries the content bit TRAV_FLAG_EMITTER, so the listener
/// pass always reaches it; a playing one also carries TRAV_FLAG_PLAYING.
///
/// The scene keeps a list of its playing emitters: the update pass enters a
/// playing emitter into the list of the scene it runs for and takes a
/// stopped one out, and an emitter that leaves a scene's graph is taken out
/// at once, so the list never holds an emitter that is gone.
///
/// Parameters are resent only when they changed. In the listener pass a
/// playing emitter hands its parameters to the listener's setters (wave
/// name, looping, minimum and maximum distance, audio level, priority,
/// pitch, pan, Doppler, in that order) only when EMITTER_CHANGED is set or
/// the listener keeps no data for it yet (getEmitterData is null); then it
/// calls sxListener::outputEmitter, on every pass. Every setter below that
/// changes one of those parameters sets EMITTER_CHANGED; the listener
/// clears it through hasBeenUpdated once it has taken them.
class SX_API sxEmitter : public sxGroup {
 public:
  SX_CLASS(sxEmitter, sxGroup)

  /// Bits of the emitter flags.
  enum EMITTER_FLAGS : unsigned {
    EMITTER_CHANGED = 0x1,        ///< parameters changed since the listener took them
    EMITTER_PLAYING = 0x4,        ///< play() was called and the wave has not ended
    EMITTER_POSITIONABLE = 0x8,   ///< the position is in the graph's space
    EMITTER_DOPPLER = 0x10,       ///< the listener applies the Doppler effect
    EMITTER_DEFAULT_FLAGS = 0x8,  ///< a new emitter: positionable, not playing
    EMITTER_PLAY_FLAGS = EMITTER_CHANGED | EMITTER_PLAYING
  };

  /// Traversal flags an emitter keeps up to date.
  enum EMITTER_TRAV_FLAGS : unsigned {
    /// A playing state changed here or below (one of the update bits).
    TRAV_FLAG_SOUND = 0x0080,
    /// Content bit: an emitter lies here or below.
    TRAV_FLAG_EMITTER = 0x0400,
    /// Content bit: a playing emitter lies here or below.
    TRAV_FLAG_PLAYING = 0x4000
  };

  /// Positionable, not playing, no wave, distances 1 to 100, level,
  /// priority and pitch 1, pan 0, not looping.
  sxEmitter();
  /// The source's fields and flags; the listener's data is not copied.
  sxEmitter(const sxEmitter& source);
  ~sxEmitter() override;

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  // --- playing

  /// Starts playing (and marks the parameters changed); nothing when
  /// playing already.
  virtual void play();
  /// Stops playing; nothing when not playing.
  virtual void stop();
  bool isPlaying() const { return emitterFlags & EMITTER_PLAYING; }
  unsigned getEmitterFlags() const { return emitterFlags; }

  // --- placement

  /// In the space of the emitter's parents (or the listener's, when not
  /// positionable).
  virtual void setXYZ(const sxVec3& xyz) { position = xyz; }
  void setXYZ(float x, float y, float z) { setXYZ(sxVec3(x, y, z)); }
  const sxVec3& getXYZ() const { return position; }
  /// Transforms the position by m.
  virtual void xform(const sxMatrix& m);
  /// A positionable emitter's position is transformed by the matrices
  /// above it in the listener pass; one that is not is handed over as it
  /// is, relative to the listener.
  virtual void enablePositionable(bool on);
  bool isPositionable() const { return emitterFlags & EMITTER_POSITIONABLE; }

  // --- parameters (each change sets EMITTER_CHANGED)

  /// Stores a copy; null for none.
  virtual void setWaveName(const char* name);
  const char* getWaveName() const { return waveName ? waveName->c_str() : nullptr; }
  virtual void setMinDistance(float d);
  float getMinDistance() const { return minDistance; }
  virtual void setMaxDistance(float d);
  float getMaxDistance() const { return maxDistance; }
  /// Clamped to 0 to 1.
  virtual void setAudioLevel(float level);
  float getAudioLevel() const { return audioLevel; }
  virtual void setPriority(float p);
  float getPriority() const { return priority; }
  virtual void setPitch(float p);
  float getPitch() const { return pitch; }
  virtual void setPan(float p);
  float getPan() const { return pan; }
  virtual void enableLooping(bool on);
  bool isLoopingEnabled() const { return looping; }
  virtual void enableDoppler(bool on);
  bool isDopplerEnabled() const { return emitterFlags & EMITTER_DOPPLER; }

  // --- passes

  /// Enters a playing emitter into the play list of the context's scene
  /// and takes one that is not playing out of it, then the group update.
  void update(sxTravContext* context) override;
  /// When playing, hands the parameters (when they changed) and the
  /// position transformed by the context's current matrix to the listener;
  /// then the group listener pass.
  void apply(sxListener* listener) const override;
  using sxGroup::apply;

 protected:
  SX_GROUP_COPIES
  /// Takes the emitter off the play lists of the scenes above parent; one
  /// left without parents stops playing and loses the listener's data.
  void removedFrom(sxGroup* parent) override;
  /// An emitter keeps TRAV_FLAG_EMITTER, and TRAV_FLAG_PLAYING while it
  /// plays or when the mask has TRAV_FLAG_REMOVED.
  void cleanUp(unsigned bits) override;

 private:
  friend class sxListener;

  // What the listener's statics do.
  void waveEnded();
  void changed() { emitterFlags |= EMITTER_CHANGED; }
  template <class T>
  void setParameter(T& field, T value);
  void setFlag(unsigned bit, bool on);
  void sendParameters(sxListener* listener);

  unsigned emitterFlags = EMITTER_DEFAULT_FLAGS;
  sxVec3 position{0.0f, 0.0f, 0.0f};
  std::optional<std::string> waveName;
  float minDistance = 1.0f;
  float maxDistance = 100.0f;
  float audioLevel = 1.0f;
  float priority = 1.0f;
  float pitch = 1.0f;
  float pan = 0.0f;
  bool looping = false;
  // The listener's own state for this emitter; not owned.
  void* emitterData = nullptr;
};
