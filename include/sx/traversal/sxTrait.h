#pragma once

#include <cstdint>

#include <sx/object/sxBase.h>

class sxEntry;
class sxFile;

/// A small object that changes how a sub-graph is traversed, drawn or heard.
///
/// Traits are attached to styles (and scenes), cameras, listeners and
/// colliders. A traversal pushes a style's traits onto its trait stack as it
/// enters the style and pops them as it leaves; the apply mode decides which
/// of two traits of one type wins. Traits are shared and read-only while a
/// traversal runs.
class SX_API sxTrait : public sxBase {
 public:
  SX_CLASS(sxTrait, sxBase)

  /// How a trait competes with the other traits of its type when pushed.
  enum MODE : std::int16_t {
    MODE_OFF = 0,       ///< never pushed, never applied
    MODE_NORMAL = 1,    ///< applied; a deeper trait of the same type replaces it
    MODE_OVERRIDE = 2,  ///< while on top, deeper traits are ignored unless the same
                        ///< object or MODE_FORCE
    MODE_FORCE = 3      ///< applied even under a MODE_OVERRIDE trait
  };

  sxTrait() = default;

  virtual void setApplyMode(MODE value) { applyMode = value; }
  virtual void enableShareable(bool enable) { shareable = enable ? 1 : 0; }
  /// Same type, same class-specific value, same apply mode and shareable value.
  virtual bool isEqual(const sxTrait* other) const;

  MODE getApplyMode() const { return MODE(applyMode); }
  /// Whether one trait object may be attached to several owners.
  bool isShareable() const { return shareable != 0; }

  /// The sxBase fields, then the apply mode and the shareable value as shorts.
  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

 protected:
  // The trait fields followed by one value: the concrete kernel traits'
  // persistence. Writing returns the entry it created (null when given one).
  sxEntry* writeWithValue(sxFile* file, sxEntry* entry, int value) const;
  sxEntry* writeWithValue(sxFile* file, sxEntry* entry, float value) const;
  // The value is left as it is when the entry cannot be read.
  sxEntry* readWithValue(sxFile* file, sxEntry* entry, int& value);
  sxEntry* readWithValue(sxFile* file, sxEntry* entry, float& value);
  // The base comparison plus the concrete class's value (of the same class,
  // which the base comparison has checked).
  template <class C, class V>
  bool isEqualValue(const sxTrait* other, V C::*value) const {
    return sxTrait::isEqual(other) &&
           static_cast<const C*>(this)->*value == static_cast<const C*>(other)->*value;
  }

 private:
  std::int16_t applyMode = MODE_NORMAL;
  std::int16_t shareable = 1;
};

/// In the class body of a trait that carries one value: declares its
/// comparison and its persistence (the trait fields, then the value), which
/// SX_DEFINE_VALUE_TRAIT defines.
#define SX_VALUE_TRAIT_OVERRIDES                        \
  bool isEqual(const sxTrait* other) const override;    \
  sxEntry* read(sxFile* file, sxEntry* entry) override; \
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

/// In the source of such a trait: its value is the member field, stored in
/// the file as Stored (int or float).
#define SX_DEFINE_VALUE_TRAIT(Class, field, Stored)           \
  bool Class::isEqual(const sxTrait* other) const {           \
    return isEqualValue(other, &Class::field);                \
  }                                                           \
  sxEntry* Class::write(sxFile* file, sxEntry* entry) const { \
    return writeWithValue(file, entry, Stored(field));        \
  }                                                           \
  sxEntry* Class::read(sxFile* file, sxEntry* entry) {        \
    Stored value = Stored(field);                             \
    sxEntry* e = readWithValue(file, entry, value);           \
    field = static_cast<decltype(field)>(value);              \
    return e;                                                 \
  }
