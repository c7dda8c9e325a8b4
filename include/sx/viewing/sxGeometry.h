#pragma once

#include <sx/containers/sxArray.h>
#include <sx/math/sxBox.h>
#include <sx/math/sxSphere.h>
#include <sx/nodes/sxGroup.h>
#include <sx/object/sxRef.h>

class sxTravContext;

/// A mesh: vertex arrays (positions, normals, texture coordinates) and the
/// indices of its points, lines or triangles.
///
/// The arrays are shared, reference-counted sxArray blocks: several
/// geometries may use one array, copies and clones of a geometry share its
/// arrays, and a scene file stores each array once however many geometries
/// refer to it. Whoever wants to change the data of one geometry only gives
/// it a copy of the array first.
///
/// The geometry keeps the bounds of its positions (a box and a sphere in its
/// own space), recomputed when the positions are set, and grows the volume
/// of a fence pass by the sphere, so transforms above cull it. After editing
/// the positions in place, call updateBounds.
///
/// Every geometry carries the content bit CONTENT_GEOMETRY from its
/// construction on, whatever happens below it.
class SX_API sxGeometry : public sxGroup {
 public:
  SX_CLASS(sxGeometry, sxGroup)

  /// The content bit of geometry.
  static constexpr unsigned CONTENT_GEOMETRY = 0x0200;

  /// The kind of primitive; its value is the number of indices (or
  /// vertices, without indices) per primitive.
  enum PRIMITIVE { POINTS = 1, LINES = 2, TRIANGLES = 3 };

  /// The arrays of a geometry and their element types: positions and
  /// normals TYPE_VEC3, texture coordinates TYPE_VEC2, indices TYPE_INT or
  /// TYPE_USHORT.
  enum ATTRIBUTE { POSITIONS = 0, NORMALS = 1, TEXCOORDS = 2, INDICES = 3 };
  static constexpr int numAttributes = 4;

  /// Triangles, no arrays, empty bounds.
  sxGeometry();
  /// Shares the source's arrays and takes its bounds.
  sxGeometry(const sxGeometry& source);

  /// The group's record, the primitive kind, then a reference to each
  /// array (the arrays themselves in entries of their own). A record whose
  /// arrays do not fit together (see isValid) is read without arrays.
  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  /// Sets (null: removes) one array. False, changing nothing, for an array
  /// of an element type the attribute does not take or an unknown
  /// attribute. Setting the positions recomputes the bounds.
  bool setArray(ATTRIBUTE attribute, sxArray* array);
  /// Null when absent or for an unknown attribute.
  sxArray* getArray(ATTRIBUTE attribute) const;
  /// Stores the kind (an unknown value counts as TRIANGLES).
  void setPrimitive(PRIMITIVE kind);
  PRIMITIVE getPrimitive() const { return primitive; }

  /// The number of positions.
  int getNumVertices() const;
  /// The number of whole primitives, by indices or, without, by positions.
  int getNumPrimitives() const;
  /// True when the arrays fit together: normals and texture coordinates,
  /// where present, one per position, and every index names a position.
  bool isValid() const;

  /// Recomputes the bounds from the positions (non-finite ones are left
  /// out) and marks the bounds above for recomputing.
  void updateBounds();
  const sxBox& getBox() const { return box; }
  const sxSphere& getSphere() const { return sphere; }

  /// Grows the pass volume by the sphere, then visits the children.
  void updateFences(sxTravContext* context) override;

 protected:
  SX_GROUP_COPIES
  void cleanUp(unsigned bits) override;

 private:
  sxRef<sxArray> arrays[numAttributes];
  PRIMITIVE primitive = TRIANGLES;
  sxBox box;
  sxSphere sphere;
};
