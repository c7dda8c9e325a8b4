#include <sx/math/sxVec4.h>

#include <algorithm>
#include <cmath>

#include <sx/math/sxMatrix.h>

void sxVec4::xform(const sxVec4& v, const sxMatrix& m) {
  sxVec4 r;
  for (int j = 0; j < 4; ++j) r[j] = m[0][j] * v.x + m[1][j] * v.y + m[2][j] * v.z + m[3][j] * v.w;
  *this = r;
}

sxVec4 sxVec4::operator*(const sxMatrix& m) const {
  sxVec4 r;
  r.xform(*this, m);
  return r;
}

void sxVec4::RGBtoHSV(const sxVec4& rgb) {
  const float r = rgb.x, g = rgb.y, b = rgb.z;
  const float max = std::max({r, g, b});
  const float min = std::min({r, g, b});
  const float s = max != 0.0f ? (max - min) / max : 0.0f;
  float h = -1.0f;
  if (s != 0.0f) {
    const float d = max - min;
    if (r == max) {
      h = (g - b) / d;
    } else if (g == max) {
      h = 2.0f + (b - r) / d;
    } else {
      h = 4.0f + (r - g) / d;
    }
    h *= 60.0f;
    if (h < 0.0f) h += 360.0f;
  }
  set(h, s, max, rgb.w);
}

void sxVec4::HSVtoRGB(const sxVec4& hsv) {
  const float h = hsv.x, s = hsv.y, v = hsv.z;
  if (s == 0.0f) {
    // A defined hue with no saturation is an error; it gives black.
    const float grey = h < 0.0f ? v : 0.0f;
    set(grey, grey, grey, hsv.w);
    return;
  }
  const float sector = (h == 360.0f ? 0.0f : h) / 60.0f;
  const float i = std::floor(sector);
  const float f = sector - i;
  const float p = v * (1.0f - s);
  const float q = v * (1.0f - s * f);
  const float t = v * (1.0f - s * (1.0f - f));
  const sxVec4 sectors[6] = {{v, t, p, 0}, {q, v, p, 0}, {p, v, t, 0},
                             {p, q, v, 0}, {t, p, v, 0}, {v, p, q, 0}};
  w = hsv.w;
  // Hues of 360 and beyond (after the wrap of 360 itself) write only alpha.
  if (i >= 0.0f && i < 6.0f) {
    const sxVec4& c = sectors[static_cast<int>(i)];
    x = c.x, y = c.y, z = c.z;
  }
}
