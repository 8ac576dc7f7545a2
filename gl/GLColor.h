// SPDX-License-Identifier: ISC
#pragma once

#include <array>

namespace brindle {

/// A colour that makes itself GL's current colour. Components are 0 to 1, alpha is not
/// premultiplied. The `Apply` operations need a current GL context (UI thread).
class GLColor {
  public:
    float red = 1.0f;
    float green = 1.0f;
    float blue = 1.0f;
    float alpha = 1.0f;

    /// Opaque white.
    constexpr GLColor() = default;
    constexpr GLColor(float r, float g, float b, float a = 1.0f)
        : red(r), green(g), blue(b), alpha(a) {}

    /// Makes this the current colour.
    virtual void Apply();
    virtual void Apply() const;
    /// Makes it current with red, green and blue multiplied by `f`.
    virtual void ApplyDimmed(float f) const;
    /// Makes it current with alpha multiplied by `f`.
    virtual void ApplyFaded(float f) const;

    constexpr void Set(float r, float g, float b, float a) {
        red = r;
        green = g;
        blue = b;
        alpha = a;
    }
    constexpr void ScaleAlpha(float f) { alpha *= f; }
    constexpr bool operator==(const GLColor& other) const {
        return red == other.red && green == other.green && blue == other.blue &&
               alpha == other.alpha;
    }
};

/// The toolkit's palette. The first colour is the default colour of every view.
inline constexpr GLColor kCream{0.8f, 0.8f, 0.7f};
inline constexpr GLColor kKhaki{0.5f, 0.5f, 0.41f};
inline constexpr GLColor kSage{0.5f, 0.75f, 0.5f};
inline constexpr GLColor kMoss{0.48f, 0.45f, 0.2f};
inline constexpr GLColor kSignal{0.9f, 0.19f, 0.19f};
inline constexpr GLColor kSky{0.65f, 0.8f, 0.85f};
inline constexpr GLColor kAmber{0.75f, 0.45f, 0.1f};
inline constexpr std::array<GLColor, 7> kPalette = {kCream,  kKhaki, kSage, kMoss,
                                                    kSignal, kSky,   kAmber};

inline constexpr GLColor kWhite{1.0f, 1.0f, 1.0f};
inline constexpr GLColor kBlack{0.0f, 0.0f, 0.0f};
inline constexpr GLColor kGrey{0.5f, 0.5f, 0.5f};
inline constexpr GLColor kGrey10{0.1f, 0.1f, 0.1f};
inline constexpr GLColor kGrey20{0.2f, 0.2f, 0.2f};
inline constexpr GLColor kGrey30{0.3f, 0.3f, 0.3f};
inline constexpr GLColor kGrey40{0.4f, 0.4f, 0.4f};
inline constexpr GLColor kGrey50{0.5f, 0.5f, 0.5f};
inline constexpr GLColor kGrey60{0.6f, 0.6f, 0.6f};
inline constexpr GLColor kGrey70{0.7f, 0.7f, 0.7f};
inline constexpr GLColor kGrey80{0.8f, 0.8f, 0.8f};
inline constexpr GLColor kGrey90{0.9f, 0.9f, 0.9f};
inline constexpr GLColor kRed{1.0f, 0.0f, 0.0f};
inline constexpr GLColor kGreen{0.0f, 1.0f, 0.0f};
inline constexpr GLColor kBlue{0.0f, 0.0f, 1.0f};
inline constexpr GLColor kCyan{0.0f, 1.0f, 1.0f};
inline constexpr GLColor kMagenta{1.0f, 0.0f, 1.0f};
inline constexpr GLColor kYellow{1.0f, 1.0f, 0.0f};
inline constexpr GLColor kDarkRed{0.8f, 0.05f, 0.05f};
inline constexpr GLColor kDarkGreen{0.05f, 0.8f, 0.05f};
inline constexpr GLColor kDarkBlue{0.05f, 0.05f, 0.8f};
inline constexpr GLColor kOlive{0.5f, 0.5f, 0.05f};

}  // namespace brindle
