// SPDX-License-Identifier: ISC
/// The characters that have a glyph, and their advances.
#pragma once

#include <array>
#include <cstddef>

namespace brindle {

inline constexpr int kFirstGlyph = 32;  ///< character code of glyph 0
inline constexpr size_t kGlyphCount = 99;

/// Advances in text units; a text unit is half the side of a glyph's picture. The digits are as
/// wide as those of Liberation Sans at 1.7014 text units per em.
inline constexpr std::array<float, kGlyphCount> kGlyphAdvances = {
    // space ! " # $ % & ' ( ) * + , - . /
    0.474f, 0.551f, 0.552f, 1.283f, 0.946f, 1.435f, 1.170f, 0.287f,  //
    0.618f, 0.618f, 0.834f, 1.390f, 0.474f, 0.557f, 0.474f, 0.529f,
    // 0 to 9
    0.946f, 0.946f, 0.946f, 0.946f, 0.946f, 0.946f, 0.946f, 0.946f, 0.946f, 0.946f,
    // : ; < = > ? and the at sign
    0.512f, 0.512f, 1.390f, 1.390f, 1.390f, 0.931f, 1.668f,
    // A to Z
    1.145f, 1.175f, 1.242f, 1.213f, 1.089f, 0.998f, 1.296f, 1.240f, 0.512f, 0.923f, 1.173f, 0.968f,
    1.455f,  //
    1.237f, 1.316f, 1.113f, 1.316f, 1.191f, 1.113f, 0.991f, 1.196f, 1.043f, 1.558f, 1.045f, 1.038f,
    1.003f,
    // [ \ ] ^ _ `
    0.637f, 0.529f, 0.637f, 1.668f, 0.834f, 0.834f,
    // a to z
    0.938f, 1.022f, 0.919f, 1.026f, 0.951f, 0.541f, 1.017f, 1.004f, 0.454f, 0.452f, 0.925f, 0.459f,
    1.463f,  //
    0.996f, 1.014f, 1.022f, 1.022f, 0.640f, 0.911f, 0.530f, 0.996f, 0.884f, 1.277f, 0.861f, 0.896f,
    0.844f,
    // { | } ~
    0.834f, 0.834f, 0.834f, 1.390f,
    // 127 to 130: cursor, middle dot, triangle, tick
    0.180f, 0.180f, 1.300f, 1.300f};

}  // namespace brindle
