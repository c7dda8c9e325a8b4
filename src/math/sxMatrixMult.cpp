#include <sx/math/sxMatrix.h>

namespace {

// What a type group holds in its upper 3x3.
enum class Lin { None, Diag, Full };

enum Group { IDENT, LINEAR, XLATE, AFFINE, SCALE, GENERAL, NUM_GROUPS };

constexpr unsigned char groupOf(unsigned int t) {
  switch (t) {
    case 1:
      return IDENT;
    case 2:
    case 10:
    case 18:
    case 26:
      return LINEAR;
    case 4:
      return XLATE;
    case 6:
    case 12:
    case 14:
    case 20:
    case 22:
    case 28:
    case 30:
      return AFFINE;
    case 8:
    case 16:
    case 24:
      return SCALE;
    default:
      return GENERAL;
  }
}

struct GroupTable {
  unsigned char group[64];
  constexpr GroupTable() : group() {
    for (unsigned int t = 0; t < 64; ++t) group[t] = groupOf(t);
  }
};
constexpr GroupTable groups;

inline int group(unsigned int type) {
  return type < 64 ? groups.group[type] : static_cast<int>(GENERAL);
}

}  // namespace

// The block products, four floats wide. All rows are computed before any is
// stored, so the result may alias an operand.
struct sxiMatrixBlocks {
  using Row = sxiRows::Row;
  static Row load(const float* p) { return sxiRows::load(p); }
  static void store(float* p, Row r) { sxiRows::store(p, r); }
  static Row unit(int i) { return sxiRows::unit(i); }

  // Row k of the 3x3 of m, as the kind L stores it.
  template <Lin L>
  static Row linearRow(const sxMatrix& m, int k) {
    if constexpr (L == Lin::Full) return load(m.mat[k]);
    if constexpr (L == Lin::Diag) return unit(k) * m.mat[k][k];
    return unit(k);
  }

  // (x, y, z, 0) times the 3x3 of m.
  template <Lin L>
  static Row times(const float* v, const sxMatrix& m) {
    if constexpr (L == Lin::Full) {
      return sxiRows::times(v, load(m.mat[0]), load(m.mat[1]), load(m.mat[2]));
    }
    const Row xyz = {v[0], v[1], v[2], 0.0f};
    if constexpr (L == Lin::Diag) {
      const Row d = {m.mat[0][0], m.mat[1][1], m.mat[2][2], 0.0f};
      return xyz * d;
    }
    return xyz;
  }

  // r = a * b for affine operands whose 3x3 blocks are of the kinds LA and
  // LB and which carry a translation when TA and TB say so.
  template <Lin LA, Lin LB, bool TA, bool TB>
  static void mult(sxMatrix& r, const sxMatrix& a, const sxMatrix& b) {
    Row rows[4];
    sxForEachComponent<3>([&](int i) {
      if constexpr (LA == Lin::Full) {
        rows[i] = times<LB>(a.mat[i], b);
      } else if constexpr (LA == Lin::Diag) {
        rows[i] = a.mat[i][i] * linearRow<LB>(b, i);
      } else {
        rows[i] = linearRow<LB>(b, i);
      }
    });
    rows[3] = TB ? load(b.mat[3]) : unit(3);
    if constexpr (TA) rows[3] += times<LB>(a.mat[3], b);
    const unsigned int type = a.type | b.type;
    sxForEachComponent<4>([&](int i) { store(r.mat[i], rows[i]); });
    r.type = type;
  }

  static void copyA(sxMatrix& r, const sxMatrix& a, const sxMatrix&) { r = a; }
  static void copyB(sxMatrix& r, const sxMatrix&, const sxMatrix& b) { r = b; }

  using Fn = void (*)(sxMatrix&, const sxMatrix&, const sxMatrix&);
  static const Fn table[NUM_GROUPS][NUM_GROUPS];
};

#define SX_BLOCK_PRODUCT(name, la, lb, ta, tb)                             \
  void sxMatrix::name(sxMatrix& r, const sxMatrix& a, const sxMatrix& b) { \
    sxiMatrixBlocks::mult<Lin::la, Lin::lb, ta, tb>(r, a, b);              \
  }
SX_BLOCK_PRODUCT(multLinearByLinear, Full, Full, false, false)
SX_BLOCK_PRODUCT(multLinearByAffine, Full, Full, false, true)
SX_BLOCK_PRODUCT(multAffineByLinear, Full, Full, true, false)
SX_BLOCK_PRODUCT(multAffineByAffine, Full, Full, true, true)
SX_BLOCK_PRODUCT(multLinearByXlate, Full, None, false, true)
SX_BLOCK_PRODUCT(multXlateByLinear, None, Full, true, false)
SX_BLOCK_PRODUCT(multXlateByAffine, None, Full, true, true)
SX_BLOCK_PRODUCT(multAffineByXlate, Full, None, true, true)
SX_BLOCK_PRODUCT(multXlateByScale, None, Diag, true, false)
SX_BLOCK_PRODUCT(multLinearByScale, Full, Diag, false, false)
SX_BLOCK_PRODUCT(multScaleByLinear, Diag, Full, false, false)
SX_BLOCK_PRODUCT(multScaleByAffine, Diag, Full, false, true)
SX_BLOCK_PRODUCT(multAffineByScale, Full, Diag, true, false)
SX_BLOCK_PRODUCT(multScaleByScale, Diag, Diag, false, false)
#undef SX_BLOCK_PRODUCT

void sxMatrix::multFull(sxMatrix& r, const sxMatrix& a, const sxMatrix& b) {
  float out[4][4];
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      out[i][j] = a.mat[i][0] * b.mat[0][j] + a.mat[i][1] * b.mat[1][j] +
                  a.mat[i][2] * b.mat[2][j] + a.mat[i][3] * b.mat[3][j];
    }
  }
  // An unknown operand says nothing about the product, so the product is
  // classified rather than given the bits of the other operand alone.
  const bool unknown = a.type == UNKNOWN || b.type == UNKNOWN;
  const unsigned int type = a.type | b.type;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) r.mat[i][j] = out[i][j];
  }
  r.type = type;
  if (unknown) r.identifyType();
}

// Rows: the group of a; columns: the group of b. The identity and the
// translation-by-translation cases are normally settled inline by mult. A scale followed by a
// translation keeps the scale block and takes the translation, which is
// what the linear-by-translation product does.
const sxiMatrixBlocks::Fn sxiMatrixBlocks::table[NUM_GROUPS][NUM_GROUPS] = {
    // IDENT
    {copyB, copyB, copyB, copyB, copyB, copyB},
    // LINEAR
    {copyA, sxMatrix::multLinearByLinear, sxMatrix::multLinearByXlate, sxMatrix::multLinearByAffine,
     sxMatrix::multLinearByScale, sxMatrix::multFull},
    // XLATE
    {copyA, sxMatrix::multXlateByLinear, mult<Lin::None, Lin::None, true, true>,
     sxMatrix::multXlateByAffine, sxMatrix::multXlateByScale, sxMatrix::multFull},
    // AFFINE
    {copyA, sxMatrix::multAffineByLinear, sxMatrix::multAffineByXlate, sxMatrix::multAffineByAffine,
     sxMatrix::multAffineByScale, sxMatrix::multFull},
    // SCALE
    {copyA, sxMatrix::multScaleByLinear, sxMatrix::multLinearByXlate, sxMatrix::multScaleByAffine,
     sxMatrix::multScaleByScale, sxMatrix::multFull},
    // GENERAL
    {copyA, sxMatrix::multFull, sxMatrix::multFull, sxMatrix::multFull, sxMatrix::multFull,
     sxMatrix::multFull},
};

void sxMatrix::multByGroups(const sxMatrix& a, const sxMatrix& b) {
  sxiMatrixBlocks::table[group(a.type)][group(b.type)](*this, a, b);
}
