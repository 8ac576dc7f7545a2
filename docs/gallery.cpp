// SPDX-License-Identifier: ISC
/// Draws every drawing routine of the toolkit, with its name: gallery BUNDLE PNG
#include <cstdio>
#include <iterator>
#include <string>

#include "docs/png.h"
#include "gl/drawing.h"
#include "gl/settings.h"
#include "tests/support/gl_context.h"

namespace brindle {
namespace {

constexpr float kCellWidth = 320.0f;  ///< pixels, as all sizes here
constexpr float kCellHeight = 200.0f;
constexpr int kColumns = 4;
constexpr float kPoint = 2.0f;  ///< one interface point
constexpr GLColor kFace{0.26f, 0.27f, 0.29f};

using Resources = GLResources*;

/// A routine at work around the middle of its cell, in an area of about 220 x 120.
struct Exhibit {
    const char* name;
    void (*draw)(Resources);
};

void TextLine(Resources r, const char* text, int alignment, float y, float size) {
    const MatrixScope matrix;
    glTranslatef(0.0f, y, 0.0f);
    glScalef(size, size, 1.0f);
    DrawText(r, text, alignment);
}

void ShowAlignments(Resources r) {
    kGrey40.Apply();
    DrawRect(1.0f, 60.0f);
    kCream.Apply();
    TextLine(r, "20 Hz", kAlignLeft, 40.0f, 16.0f);
    TextLine(r, "1.25 kHz", kAlignCentre, 0.0f, 16.0f);
    TextLine(r, "-12.5 dB", kAlignRight, -40.0f, 16.0f);
}

void ShowSizes(Resources r) {
    kCream.Apply();
    float y = 55.0f;
    for (const float size : {7.0f, 10.5f, 12.0f, 15.0f, 20.0f}) {
        y -= size * 0.9f;
        TextLine(r, "Hi Shelf 24dB/oct", kAlignCentre, y, size);
        y -= size * 1.1f;
    }
}

void ShowTextShadow(Resources r) {
    kKhaki.Apply();
    DrawRoundRect(r, 110.0f, 50.0f, 12.0f);
    const MatrixScope matrix;
    glScalef(30.0f, 30.0f, 1.0f);
    {
        const MatrixScope shadow;
        DrawTextShadow(r, "Brindle", kAlignCentre);
    }
    kWhite.Apply();
    DrawText(r, "Brindle", kAlignCentre);
}

void ShowExtraGlyphs(Resources r) {
    kSky.Apply();
    TextLine(r, "a\x7f  b\x80g  \x81  \x82", kAlignCentre, 0.0f, 30.0f);
}

void ShowStyles(Resources r) {
    kFace.Apply();
    for (int style = 0; style < 5; ++style) {
        const MatrixScope matrix;
        glTranslatef(static_cast<float>(style % 3) * 76.0f - 76.0f, style < 3 ? 34.0f : -34.0f,
                     0.0f);
        DrawFramedBox(r, style, 32.0f, 26.0f, 16.0f);
    }
}

void ShowFrame(Resources r) {
    kAmber.Apply();
    DrawRoundFrame(r, 110.0f, 55.0f, 16.0f);
    DrawRoundFrame(r, 60.0f, 32.0f, 32.0f);
}

void ShowWell(Resources r) {
    DrawWell(r, 100.0f, 50.0f, 12.0f, kFace);
}

void ShowSunken(Resources r) {
    DrawWell(r, 100.0f, 50.0f, 12.0f, kFace);
    DrawShadow(r, 100.0f, 50.0f, 12.0f, true);
}

void ShowGloss(Resources r) {
    kAmber.Apply();
    DrawRoundRect(r, 100.0f, 50.0f, 12.0f);
    DrawGloss(r, 100.0f, 50.0f);
}

void ShowKnob(Resources r) {
    kBlack.ApplyFaded(0.5f);
    {
        const MatrixScope matrix;
        glTranslatef(0.0f, -6.0f, 0.0f);
        DrawDisc(r, 56.0f, 56.0f);
    }
    kSky.ApplyDimmed(0.8f);
    DrawTexture(r->mipTexture250, 52.0f, 52.0f);
    DrawGloss(r, 52.0f, 52.0f);
}

void ShowMipmaps(Resources r) {
    kCream.Apply();
    float x = -110.0f;
    for (const float size : {48.0f, 30.0f, 16.0f, 8.0f, 4.0f, 2.0f}) {
        const MatrixScope matrix;
        glTranslatef(x + size, 0.0f, 0.0f);
        DrawTexture(r->mipTexture318, size, size);
        x += size * 2.0f + 3.0f;
    }
}

const Exhibit kExhibits[] = {
    {"DrawText, three alignments", ShowAlignments},
    {"DrawText, 7 to 20 pixels a unit", ShowSizes},
    {"DrawTextShadow", ShowTextShadow},
    {"DrawText, characters 127 to 130", ShowExtraGlyphs},
    {"DrawRect",
     [](Resources) {
         kSage.Apply();
         DrawRect(100.0f, 50.0f);
     }},
    {"DrawDisc",
     [](Resources r) {
         kSignal.Apply();
         DrawDisc(r, 100.0f, 55.0f);
     }},
    {"DrawBar",
     [](Resources r) {
         kSky.Apply();
         DrawBar(r, 110.0f, 24.0f);
     }},
    {"DrawRoundRect",
     [](Resources r) {
         kFace.Apply();
         DrawRoundRect(r, 110.0f, 55.0f, 16.0f);
     }},
    {"DrawFramedBox, styles 0 to 4", ShowStyles},
    {"DrawRoundFrame", ShowFrame},
    {"DrawWell", ShowWell},
    {"DrawWell and DrawShadow", ShowSunken},
    {"DrawGloss", ShowGloss},
    {"Disc, knob face, gloss", ShowKnob},
    {"Mipmapped ring", ShowMipmaps},
    {"DrawImage 102",
     [](Resources r) {
         kGreen.Apply();
         glScalef(60.0f, 60.0f, 1.0f);
         DrawImage(r, 102);
     }},
};
constexpr int kRows = (static_cast<int>(std::size(kExhibits)) + kColumns - 1) / kColumns;
constexpr int kWidth = static_cast<int>(kCellWidth) * kColumns;
constexpr int kHeight = static_cast<int>(kCellHeight) * kRows;

void Hang(const Exhibit& exhibit, int place, Resources resources) {
    const MatrixScope cell;
    const int column = place % kColumns;
    const int row = place / kColumns;
    glTranslatef((static_cast<float>(column) + 0.5f) * kCellWidth - kWidth / 2.0f,
                 kHeight / 2.0f - (static_cast<float>(row) + 0.5f) * kCellHeight + 14.0f, 0.0f);
    {
        const MatrixScope middle;
        exhibit.draw(resources);
    }
    kCream.ApplyFaded(0.7f);
    TextLine(resources, exhibit.name, kAlignCentre, -86.0f, 11.0f);
}

bool MakeGallery(const std::string& bundle, const char* path) {
    GLContext context(kWidth, kHeight);
    resourceDirectory = bundle + "/";
    GLResources resources(kPoint);
    context.Clear(0.17f);
    int place = 0;
    for (const Exhibit& exhibit : kExhibits) Hang(exhibit, place++, &resources);
    return WritePng(context.Read(), path);
}

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: gallery BUNDLE PNG\n", stderr);
        return 2;
    }
    return brindle::MakeGallery(argv[1], argv[2]) ? 0 : 1;
}
