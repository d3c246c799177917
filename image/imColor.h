// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Conversions between colour spaces, pixel by pixel: RGB, HSV, XYZ, L*a*b*, L*u*v* and YCbCr.
//
// Bands 0, 1 and 2 are the components in the order of the space's name. As pixels are integers, the
// spaces are stored like this:
//
//   RGB, YCbCr     0 .. 255 (YCbCr may leave that range)
//   XYZ            fixed point, 16384 stands for 1
//   HSV            hue in degrees 0 .. 360, 361 for none; saturation and value as XYZ
//   Lab, Luv       whole numbers, L up to 100
//
// The caller makes the output image, of the input's size; bands beyond the first three are neither
// read nor written. Input and output may be the same image. Unless said otherwise, the output's
// other fields stay as they are.
//
// Arithmetic is in double precision, from left to right as written here, and its result truncated
// towards zero, so that it is the same on every machine; a result that does not fit 32 bits takes
// the nearest value. Pixels may hold any values, in range or not.
//
// Ends with an error, in every conversion: no image, images with fewer than three bands or of
// different size, memory that cannot be allocated (an error is a line on standard error and status
// 1, or an exception: base/error.h).
#pragma once

#include "image/imImage.h"

#pragma GCC visibility push(default)

///   X = (0.412453 R + 0.35758  G + 0.180423 B) * 16384 / 255
///   Y = (0.212671 R + 0.71516  G + 0.072169 B) * 16384 / 255
///   Z = (0.019334 R + 0.119193 G + 0.950227 B) * 16384 / 255
void imRgb2xyz(const imImage *rgb, imImage *xyz);

/// R, G and B are 255 times these, of which values below 0.005 count as 0 and above 0.995 as 1:
///   ( 3.240479 X - 1.53715  Y - 0.498535 Z) / 16384
///   (-0.969256 X + 1.875992 Y + 0.041556 Z) / 16384
///   ( 0.055648 X - 0.204043 Y + 1.057311 Z) / 16384
/// The output's maxValue becomes 255.
void imXyz2rgb(const imImage *xyz, imImage *rgb);

///   L = 116 cbrt(Y / 16384) - 16
///   a = 500 (f(0.950456 X / 16384) - f(Y / 16384))
///   b = 200 (f(Y / 16384) - f(1.088754 Z / 16384))
/// where f(t) = cbrt(t) for t > 0.008856, else 7.787 t + 0.137931. L has no linear part near 0: it
/// is -16 for black. X and Z are multiplied, not divided, by the factors of the white point.
void imXyz2lab(const imImage *xyz, imImage *lab);

///   X = 15572.271104 fx fx fx,   Y = fy [fy] fy,   Z = 17838.145536 fz fz fz
/// where fy = (L + 16) / 116 for L > 7, else cbrt(L / 903.3); fx = a / 500 + fy; fz = fy - b / 200;
/// [] is the integer part. Y is 0 for L from 0 to 99, so this is not the inverse of imXyz2lab.
void imLab2xyz(const imImage *lab, imImage *xyz);

///   L = 903.3 y for y = Y / 16384 <= 0.008856, else 116 cbrt(y) - 16
///   u = 13 L (4 X / d - 0.1978394)
///   v = 13 L (9 Y / d - 0.4683422)
/// with the L just stored and d = X + 15 Y + 3 Z; both quotients are 0 where d is 0.
/// Prints "in xyz2luv\n" on standard output.
void imXyz2luv(const imImage *xyz, imImage *luv);

///   Y = t t t 16384, t = (L + 16) / 116
///   X = 9 u' Y / (4 v'),         u' = u / (13 L) + 0.1978394
///   Z = 3 Y / v' - X / 3 - 5 Y,  v' = v / (13 L) + 0.4683422
/// with the X and Y just stored. X and Z are 0 where 3 |v'| <= 0.005, and where L is 0.
void imLuv2xyz(const imImage *luv, imImage *xyz);

///   Y  = 0.299 R + 0.587 G + 0.114 B
///   Cb = (-37.797 R - 74.203 G + 112 B) / 255 + 128
///   Cr = (112 R - 93.786 G - 18.214 B) / 255 + 128
void imRgb2ycbcr(const imImage *rgb, imImage *ycc);

///   R = 255 (y + 0.00625893 (Cr - 128))
///   G = 255 (y - 0.00153632 (Cb - 128) - 0.00318811 (Cr - 128))
///   B = 255 (y + 0.00791071 (Cb - 128))
/// where y = (Y - 16) 0.00456621. Black has Y = 16 here, but 0 in imRgb2ycbcr. Results are not
/// clipped.
void imYcbcr2rgb(const imImage *ycc, imImage *rgb);

/// With max and min of the three and d = max - min:
///   V = max * 16384 / 255, S = d * 16384 / max, or 0 where max is 0 (integer divisions)
///   H = 60 h, plus 360 where negative, rounded to the nearest integer (half to even);
///       h = (G - B) / d where R is max, else (B - R) / d + 2 where G is, else (R - G) / d + 4
/// H is 361 where S is 0, and can be 360 by rounding.
void imRgb2hsv(const imImage *rgb, imImage *hsv);

/// Where S is 0, all three are V * 255 / 16384 (integer division). Else, with s = S / 16384,
/// v = V / 16384, i the integer part of H / 60 and f its fraction (0 for an H of 360):
///   i = 0: v, t, p;  1: q, v, p;  2: p, v, t;  3: p, q, v;  4: t, p, v;  5: v, p, q
/// times 255, where p = v (1 - s), q = v (1 - s f), t = v (1 - s (1 - f)). Another i leaves the
/// output's pixel as it is.
/// At the first pixel, in raster order, with S = 0 and an H other than 361 the conversion stops:
/// "in hsv2rgb: saturation is 0 and hue is defined!\n" on standard error, and the output stays as
/// it is from there on.
void imHsv2rgb(const imImage *hsv, imImage *rgb);

/// The two conversions by way of XYZ, with the same results and messages, in one pass without an
/// XYZ image.
void imRgb2lab(const imImage *rgb, imImage *lab);
void imLab2rgb(const imImage *lab, imImage *rgb);
void imRgb2luv(const imImage *rgb, imImage *luv);
void imLuv2rgb(const imImage *luv, imImage *rgb);

#pragma GCC visibility pop
