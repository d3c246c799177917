// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "image/imColor.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/multiversion.h"
#include "base/report.h"
#include "image/detail/colorBlocks.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cmath>

using namespace seedforest::detail;
using namespace seedforest::detail::color;

namespace {

constexpr Range bytes = {0, 256};
constexpr Range fixedPoint = {0, 32768};
constexpr Range labRange = {2048, 4096};

#define INLINE SEEDFOREST_INLINE // short, so that the first line of a rule is not broken

void requireColours(const char *operation, const imImage *in, const imImage *out) {
  requireBands(operation, in, 3);
  requireBands(operation, out, 3);
  requireSameSize(operation, in, out);
}

// results[i] = table[v[i]], with gather instructions where the machine has them.
SEEDFOREST_MULTIVERSION void lookUp(const double *table, const int *v, int n, double *results) {
  for (int i = 0; i < n; ++i)
    results[i] = table[v[i]];
}
SEEDFOREST_MULTIVERSION void lookUp(const int *table, const int *v, int n, int *results) {
  for (int i = 0; i < n; ++i)
    results[i] = table[v[i]];
}

// A function of an integer, with a table of its values from `least` to `most`.
template <class Value>
class Tabulated {
public:
  using Function = Value (*)(int);

  Tabulated(Function function, int least, int most)
      : function_(function), least_(least), most_(most),
        value_(makeArray<Value>(static_cast<std::size_t>(most - least) + 1)) {
    for (int v = least; v <= most; ++v)
      value_[v - least] = function(v);
  }

  void of(const int *v, int n, Value *results) const {
    if (allWithin(v, n, least_, most_))
      lookUp(value_.get() - least_, v, n, results);
    else
      std::transform(v, v + n, results, function_);
  }

private:
  Function function_;
  int least_;
  int most_;
  Array<Value> value_;
};

constexpr int mostXyz = 17838; // Z of white

SEEDFOREST_MULTIVERSION void rgbToXyz(const Bands &rgb, Block &xyz, int n) {
  if (bytes.holds(rgb, n))
    return bytesToXyz(rgb, xyz, n);
  applyWith<Any>(rgb, xyz, n, [](Any a, double r, double g, double b, int) INLINE {
    return Pixel{{a.whole((0.412453 * r + 0.35758 * g + 0.180423 * b) * one / 255),
                  a.whole((0.212671 * r + 0.71516 * g + 0.072169 * b) * one / 255),
                  a.whole((0.019334 * r + 0.119193 * g + 0.950227 * b) * one / 255)}};
  });
}

// 0 .. 255 from 0 .. 1; below 0.005 counts as 0, above 0.995 as 1.
SEEDFOREST_INLINE inline int clipped(double c) {
  const double below = c < 0.005 ? 0.0 : c;
  return static_cast<int>(255 * (below > 0.995 ? 1.0 : below));
}

SEEDFOREST_MULTIVERSION void xyzToRgb(const Bands &xyz, Block &rgb, int n) {
  applyWith<Any>(xyz, rgb, n, [](Any, double x, double y, double z, int) INLINE {
    return Pixel{{clipped((3.240479 * x - 1.53715 * y - 0.498535 * z) / one),
                  clipped((-0.969256 * x + 1.875992 * y + 0.041556 * z) / one),
                  clipped((0.055648 * x - 0.204043 * y + 1.057311 * z) / one)}};
  });
}

double labRoot(double t) {
  return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 0.137931;
}

// f of X, Y and Z, for the pixels of a block.
struct LabRoots {
  double x[blockPixels];
  double y[blockPixels];
  double z[blockPixels];
};

// f of Y is a line up to here.
constexpr int darkestRoot = 146;

int labLightness(int y) {
  return truncate(116 * std::cbrt(y / one) - 16);
}

// Of pixels that are not dark: the root of Y gives L, too.
SEEDFOREST_MULTIVERSION void rootsToLab(const Bands &xyz, const LabRoots &f, Block &lab, int n) {
  apply(xyz, lab, n, fixedPoint, [&](auto a, double, double, double, int i) INLINE {
    return Pixel{{a.whole(116 * f.y[i] - 16), a.whole(500 * (f.x[i] - f.y[i])),
                  a.whole(200 * (f.y[i] - f.z[i]))}};
  });
}

// Replaces L of dark pixels.
SEEDFOREST_MULTIVERSION void relight(const int *y, const int *ofDark, int n, int *lightness) {
  for (int i = 0; i < n; ++i)
    lightness[i] = y[i] < darkestRoot ? ofDark[i] : lightness[i];
}

SEEDFOREST_MULTIVERSION bool capLight(const int *y, int n, int *capped) {
  int anyDark = 0;
  for (int i = 0; i < n; ++i) {
    anyDark |= y[i] < darkestRoot ? 1 : 0;
    capped[i] = std::min(y[i], darkestRoot - 1);
  }
  return anyDark != 0;
}

class XyzToLab {
public:
  XyzToLab()
      : ofX_([](int x) { return labRoot(0.950456 * x / one); }, 0, mostXyz),
        ofY_([](int y) { return labRoot(y / one); }, 0, mostXyz),
        ofZ_([](int z) { return labRoot(1.088754 * z / one); }, 0, mostXyz),
        ofDark_(labLightness, 0, darkestRoot - 1) {}

  void operator()(const Bands &xyz, Block &lab, int n) const {
    LabRoots f;
    ofX_.of(xyz.band[0], n, f.x);
    ofY_.of(xyz.band[1], n, f.y);
    ofZ_.of(xyz.band[2], n, f.z);
    rootsToLab(xyz, f, lab, n);
    replaceDark(xyz.band[1], lab.band[0], n);
  }

private:
  void replaceDark(const int *y, int *lightness, int n) const {
    int dark[blockPixels];
    if (!capLight(y, n, dark))
      return;
    ofDark_.of(dark, n, dark);
    relight(y, dark, n, lightness);
  }

  Tabulated<double> ofX_;
  Tabulated<double> ofY_;
  Tabulated<double> ofZ_;
  Tabulated<int> ofDark_;
};

SEEDFOREST_MULTIVERSION void rootsToXyz(const Bands &lab, const double *fyOfPixel, Block &xyz,
                                        int n) {
  apply(lab, xyz, n, labRange, [=](auto arithmetic, double, double a, double b, int i) INLINE {
    const double fy = fyOfPixel[i];
    const double fx = a / 500 + fy;
    const double fz = fy - b / 200;
    return Pixel{{arithmetic.whole(15572.271104 * fx * fx * fx),
                  arithmetic.whole(fy * arithmetic.whole(fy) * fy),
                  arithmetic.whole(17838.145536 * fz * fz * fz)}};
  });
}

class LabToXyz {
public:
  LabToXyz()
      : root_([](int l) { return l > 7 ? (l + 16.0) / 116 : std::cbrt(l / 903.3); }, -16, 100) {}

  void operator()(const Bands &lab, Block &xyz, int n) const {
    double fy[blockPixels];
    root_.of(lab.band[0], n, fy);
    rootsToXyz(lab, fy, xyz, n);
  }

private:
  Tabulated<double> root_;
};

int luvLightness(int stored) {
  const double y = stored / one;
  return truncate(y <= 0.008856 ? 903.3 * y : 116 * std::cbrt(y) - 16);
}

// Computes u and v; L, which depends on Y alone, is given.
SEEDFOREST_MULTIVERSION void lightnessToLuv(const Bands &xyz, const int *lightness, Block &luv,
                                            int n) {
  apply(xyz, luv, n, fixedPoint, [=](auto a, double x, double y, double z, int i) INLINE {
    const double sum = x + 15 * y + 3 * z; // exactly 0 or at least 1 away from it
    const double d = sum == 0 ? 1.0 : sum;
    const double u = 4 * x / d;
    const double v = 9 * y / d;
    const double l = lightness[i];
    return Pixel{{lightness[i], a.whole(13 * l * ((sum == 0 ? 0.0 : u) - 0.1978394)),
                  a.whole(13 * l * ((sum == 0 ? 0.0 : v) - 0.4683422))}};
  });
}

class XyzToLuv {
public:
  XyzToLuv() : lightness_(luvLightness, 0, mostXyz) {}

  void operator()(const Bands &xyz, Block &luv, int n) const {
    int lightness[blockPixels];
    lightness_.of(xyz.band[1], n, lightness);
    lightnessToLuv(xyz, lightness, luv, n);
  }

private:
  Tabulated<int> lightness_;
};

// A conversion with tables. Those from XYZ take a millisecond to fill, so they are kept.
template <class Conversion>
const Conversion &tabulated() {
  static const Conversion conversion;
  return conversion;
}

SEEDFOREST_MULTIVERSION void luvToXyz(const Bands &luv, Block &xyz, int n) {
  applyWith<Any>(luv, xyz, n, [](Any a, double l, double uOfL, double vOfL, int) INLINE {
    const double t = (l + 16) / 116;
    const double y = a.whole(t * t * t * one);
    const double divisor = l == 0 ? 1.0 : 13 * l;
    const double u = uOfL / divisor + 0.1978394;
    const double v = vOfL / divisor + 0.4683422;
    const bool isDark = (l == 0) | (3 * std::fabs(v) <= 0.005);
    const double chroma = isDark ? 1.0 : v;
    const double bright = 9 * u * y / (4 * chroma);
    const double x = a.whole(isDark ? 0.0 : bright);
    const double z = 3 * y / chroma - x / 3 - 5 * y;
    return Pixel{{static_cast<int>(x), static_cast<int>(y), a.whole(isDark ? 0.0 : z)}};
  });
}

SEEDFOREST_MULTIVERSION void rgbToYcbcr(const Bands &rgb, Block &ycc, int n) {
  apply(rgb, ycc, n, bytes, [](auto a, double r, double g, double b, int) INLINE {
    return Pixel{{a.whole(0.299 * r + 0.587 * g + 0.114 * b),
                  a.whole(a.by255(-37.797 * r - 74.203 * g + 112 * b) + 128),
                  a.whole(a.by255(112 * r - 93.786 * g - 18.214 * b) + 128)}};
  });
}

SEEDFOREST_MULTIVERSION void ycbcrToRgb(const Bands &ycc, Block &rgb, int n) {
  apply(ycc, rgb, n, bytes, [](auto a, double y16, double cb128, double cr128, int) INLINE {
    const double y = (y16 - 16) * 0.00456621;
    const double cb = cb128 - 128;
    const double cr = cr128 - 128;
    return Pixel{{a.whole(255 * (y + 0.00625893 * cr)),
                  a.whole(255 * (y - 0.00153632 * cb - 0.00318811 * cr)),
                  a.whole(255 * (y + 0.00791071 * cb))}};
  });
}

constexpr int noHue = 361;

// Rounds half to even, for 0 .. 2^52: a double of 2^52 or more has no fraction bits.
SEEDFOREST_INLINE inline int rounded(double value) {
  constexpr double wholeNumbersOnly = 4503599627370496.0;
  return static_cast<int>(value + wholeNumbersOnly - wholeNumbersOnly);
}

// A quotient of integers below 2^52 is never rounded up to the next integer in double precision, so
// that truncating it is their integer division.
SEEDFOREST_MULTIVERSION void rgbToHsv(const Bands &rgb, Block &hsv, int n) {
  apply(rgb, hsv, n, bytes, [](auto a, auto r, auto g, auto b, int) INLINE {
    const auto rg = r > g ? r : g;
    const auto max = rg > b ? rg : b;
    const auto lowerOfRg = r < g ? r : g;
    const auto range = max - (lowerOfRg < b ? lowerOfRg : b);
    const int saturation = a.share(range, max);
    const double difference = r == max ? g - b : g == max ? b - r : r - g;
    const double turn = r == max ? 0 : g == max ? 2 : 4;
    const double angle = 60 * (difference / (range == 0 ? 1 : range) + turn);
    const int hue = rounded(angle < 0 ? angle + 360 : angle);
    return Pixel{{saturation == 0 ? noHue : hue, saturation, a.share(max, 255)}};
  });
}

// Where the saturation is 0, all components are v, whatever the hue. A hue outside the circle gives
// values of no meaning.
SEEDFOREST_MULTIVERSION void hsvToRgb(const Bands &hsv, Block &rgb, int n) {
  apply(hsv, rgb, n, fixedPoint, [](auto a, double hue, double stored, double value, int) INLINE {
    const double h = (hue == 360 ? 0.0 : hue) / 60;
    const double s = stored / one;
    const double v = value / one;
    // The share of the saturation that lowers a component: all of it in p, a part in q and t.
    const double q = h - static_cast<int>(h);
    const double t = 1 - q;
    const double r = h < 1 ? 0.0 : h < 2 ? q : h < 4 ? 1.0 : h < 5 ? t : 0.0;
    const double g = h < 1 ? t : h < 3 ? 0.0 : h < 4 ? q : 1.0;
    const double b = h < 2 ? 1.0 : h < 3 ? t : h < 5 ? 0.0 : q;
    return Pixel{{a.whole(v * (1 - s * r) * 255), a.whole(v * (1 - s * g) * 255),
                  a.whole(v * (1 - s * b) * 255)}};
  });
}

// The pixels before the first that is grey and has a hue.
SEEDFOREST_MULTIVERSION int beforeGreyWithHue(const Bands &hsv, int n) {
  const auto isOne = [&](int i) { return (hsv.band[1][i] == 0) & (hsv.band[0][i] != noHue); };
  int any = 0;
  for (int i = 0; i < n; ++i)
    any |= isOne(i);
  int i = any == 0 ? n : 0;
  while (i < n && !isOne(i))
    ++i;
  return i;
}

// Stores the pixels that are grey or have a hue of -59 .. 360; H / 60 truncates to 0 from -59 on.
SEEDFOREST_MULTIVERSION void storeWithHue(const Bands &rgb, const Bands &hsv, int n, imImage *image,
                                          int start) {
  for (int b = 0; b < 3; ++b) {
    int *out = image->band[b] + start;
    for (int i = 0; i < n; ++i) {
      const int h = hsv.band[0][i];
      out[i] = ((hsv.band[1][i] == 0) | ((h > -60) & (h <= 360))) ? rgb.band[b][i] : out[i];
    }
  }
}

} // namespace

void imRgb2xyz(const imImage *rgb, imImage *xyz) {
  requireColours("imRgb2xyz", rgb, xyz);
  convert(rgb, xyz, rgbToXyz);
}

void imXyz2rgb(const imImage *xyz, imImage *rgb) {
  requireColours("imXyz2rgb", xyz, rgb);
  convert(xyz, rgb, xyzToRgb);
  rgb->maxValue = 255;
}

void imXyz2lab(const imImage *xyz, imImage *lab) {
  requireColours("imXyz2lab", xyz, lab);
  convert(xyz, lab, tabulated<XyzToLab>());
}

void imLab2xyz(const imImage *lab, imImage *xyz) {
  requireColours("imLab2xyz", lab, xyz);
  convert(lab, xyz, tabulated<LabToXyz>());
}

void imXyz2luv(const imImage *xyz, imImage *luv) {
  requireColours("imXyz2luv", xyz, luv);
  progress("in xyz2luv\n");
  convert(xyz, luv, tabulated<XyzToLuv>());
}

void imLuv2xyz(const imImage *luv, imImage *xyz) {
  requireColours("imLuv2xyz", luv, xyz);
  convert(luv, xyz, luvToXyz);
}

void imRgb2ycbcr(const imImage *rgb, imImage *ycc) {
  requireColours("imRgb2ycbcr", rgb, ycc);
  convert(rgb, ycc, rgbToYcbcr);
}

void imYcbcr2rgb(const imImage *ycc, imImage *rgb) {
  requireColours("imYcbcr2rgb", ycc, rgb);
  convert(ycc, rgb, ycbcrToRgb);
}

void imRgb2hsv(const imImage *rgb, imImage *hsv) {
  requireColours("imRgb2hsv", rgb, hsv);
  convert(rgb, hsv, rgbToHsv);
}

void imHsv2rgb(const imImage *hsv, imImage *rgb) {
  requireColours("imHsv2rgb", hsv, rgb);
  Block from; // a copy: hue and saturation are read again while the result is stored
  Block to;
  for (int start = 0, n; start < hsv->npixels; start += n) {
    n = std::min(blockPixels, hsv->npixels - start);
    for (int b = 0; b < 3; ++b)
      std::copy_n(hsv->band[b] + start, n, from.band[b]);
    const int good = beforeGreyWithHue(from, n);
    hsvToRgb(from, to, good);
    storeWithHue(to, from, good, rgb, start);
    if (good < n)
      return warn("in hsv2rgb: saturation is 0 and hue is defined!\n");
  }
}

void imRgb2lab(const imImage *rgb, imImage *lab) {
  requireColours("imRgb2lab", rgb, lab);
  convert(rgb, lab, join(rgbToXyz, tabulated<XyzToLab>()));
}

void imLab2rgb(const imImage *lab, imImage *rgb) {
  requireColours("imLab2rgb", lab, rgb);
  convert(lab, rgb, join(tabulated<LabToXyz>(), xyzToRgb));
  rgb->maxValue = 255;
}

void imRgb2luv(const imImage *rgb, imImage *luv) {
  requireColours("imRgb2luv", rgb, luv);
  progress("in xyz2luv\n");
  convert(rgb, luv, join(rgbToXyz, tabulated<XyzToLuv>()));
}

void imLuv2rgb(const imImage *luv, imImage *rgb) {
  requireColours("imLuv2rgb", luv, rgb);
  convert(luv, rgb, join(luvToXyz, xyzToRgb));
  rgb->maxValue = 255;
}
