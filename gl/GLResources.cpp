// SPDX-License-Identifier: ISC
#include "gl/GLResources.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <system_error>
#include <utility>

#include "gl/bitmap.h"
#include "gl/settings.h"

namespace brindle {
namespace {

constexpr const char* kImageFolder = "res/images/";

std::string ImageName(uint32_t number) {
    return "img_" + std::to_string(number) + ".bmp";
}

std::string ImagePath(uint32_t number) {
    return resourceDirectory + kImageFolder + ImageName(number);
}

/// Names of the files in the folder of images, of which there are far fewer than numbers.
std::set<std::string> ListImages() {
    std::set<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator file(resourceDirectory + kImageFolder, error);
    for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
        names.insert(file->path().filename().string());
    }
    return names;
}

std::string GlyphPath(int character) {
    return resourceDirectory + "res/chars/char_" + std::to_string(character);
}

/// Uploads one mipmap level of the bound texture.
void UploadLevel(int level, const Bitmap& image, const char* path) {
    constexpr GLint kFourComponents = 4;
    glTexImage2D(GL_TEXTURE_2D, level, kFourComponents, image.width, image.height, 0, GL_BGRA,
                 GL_UNSIGNED_BYTE, image.pixels.data());
    const GLenum error = glGetError();
    if (error != GL_NO_ERROR) {
        std::printf("ConvertBitmapToGLTexture, Error %d processing file %s\n",
                    static_cast<int>(error), path);
    }
}

/// Suppresses messages about missing files during a scope.
struct QuietScope {
    QuietScope() { quietMissingFiles = true; }
    ~QuietScope() { quietMissingFiles = false; }
    QuietScope(const QuietScope&) = delete;
    QuietScope& operator=(const QuietScope&) = delete;
};

/// A new texture with linear filters, bound.
GLuint MakeLinearTexture() {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    return texture;
}

/// `image` at half its size, rounded like software GL; empty if a side is a single pixel.
Bitmap Halved(const Bitmap& image) {
    Bitmap half{image.width / 2, image.height / 2, {}};
    half.pixels.reserve(image.pixels.size() / 4);
    const auto stride = static_cast<size_t>(image.width) * 4;
    for (size_t y = 0; y < static_cast<size_t>(half.height); ++y) {
        for (size_t i = 0; i < static_cast<size_t>(half.width) * 4; ++i) {
            const uint8_t* at = &image.pixels[2 * y * stride + i / 4 * 8 + i % 4];
            const int lower = (at[0] + at[4] + 1) / 2;
            const int upper = (at[stride] + at[stride + 4] + 1) / 2;
            half.pixels.push_back(static_cast<uint8_t>((lower + upper + 1) / 2));
        }
    }
    return half;
}

/// The sheet with all glyphs' pictures: cells with a margin, so that a linear filter reads none of
/// a neighbour. The margin holds the picture's opposite edge, as a repeated texture does.
constexpr int kGlyphSide = 40;
constexpr int kMargin = 4;
constexpr int kCell = kGlyphSide + 2 * kMargin;
constexpr int kSheetSide = 512;
constexpr int kSheetColumns = kSheetSide / kCell;

/// Copies a glyph's picture and its margin into a cell.
void CopyToSheet(const Bitmap& picture, int left, int bottom, Bitmap& sheet) {
    const auto wrapped = [](int i) { return (i + kGlyphSide - kMargin) % kGlyphSide; };
    for (int y = 0; y < kCell; ++y) {
        for (int x = 0; x < kCell; ++x) {
            const auto from = static_cast<size_t>(wrapped(y) * kGlyphSide + wrapped(x)) * 4;
            const auto to = static_cast<size_t>((bottom + y) * kSheetSide + left + x) * 4;
            std::copy_n(&picture.pixels[from], 4, &sheet.pixels[to]);
        }
    }
}

/// Makes a texture of letters with up to two smaller mipmap levels, for text that is drawn directly
/// into a window of the design size: a linear filter alone would skip strokes there. One level at a
/// time is sharper than two mixed; the bias keeps the full picture in use down to half its size.
/// The levels are not made by GL: it would compile a program, which takes longer than the rest.
GLuint MakeLetterTexture(Bitmap picture, const char* path) {
    constexpr int kMostLevels = 3;
    glGetError();  // an earlier error is not this picture's
    const GLuint texture = MakeLinearTexture();
    int levels = 0;
    for (; levels < kMostLevels && !picture.pixels.empty(); ++levels) {
        UploadLevel(levels, picture, path);
        picture = Halved(picture);
    }
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, levels - 1);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_LOD_BIAS, -0.5f);
    return texture;
}

}  // namespace

GLuint LoadTexture(const char* path) {
    Bitmap image;
    glGetError();
    if (!LoadBitmap(path, image)) return 0;
    const GLuint texture = MakeLinearTexture();
    UploadLevel(0, image, path);
    return texture;
}

GLResources::GLResources(float pageScale) : interfaceScale(pageScale) {
    {
        const QuietScope quiet;
        const std::set<std::string> names = ListImages();
        for (uint32_t number = 0; number < kImageCount; ++number) {
            if (names.count(ImageName(number)) == 0) continue;
            images[number] = Keep(LoadTexture(ImagePath(number).c_str()));
        }
    }
    constexpr std::array<uint32_t, 5> kNeeded = {102, 150, 160, 250, 318};
    hasPictures_ = std::ranges::all_of(kNeeded, [this](uint32_t n) { return images[n] != 0; });
    glEnable(GL_LINE_SMOOTH);
    glHint(GL_LINE_SMOOTH_HINT, GL_DONT_CARE);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    LoadGlyphs();
    mipTexture160 = LoadMipmappedTexture(160, 6);
    mipTexture150 = LoadMipmappedTexture(150, 6);
    mipTexture250 = LoadMipmappedTexture(250, 4);
    mipTexture318 = LoadMipmappedTexture(318, 4);
    defaultImage = Image(102);
}

void GLResources::LoadGlyphs() {
    Bitmap sheet{kSheetSide, kSheetSide, std::vector<uint8_t>(size_t{kSheetSide} * kSheetSide * 4)};
    std::vector<Glyph*> onSheet;
    for (size_t k = 0; k < kGlyphCount; ++k) {
        Glyph& glyph = glyphs[k];
        glyph = {kGlyphAdvances[k], kGlyphAdvances[k] * 0.5f};
        Bitmap picture;
        const auto index = static_cast<int>(k);
        const std::string path = GlyphPath(kFirstGlyph + index);
        if (!LoadBitmap(path.c_str(), picture)) continue;
        if (picture.width != kGlyphSide || picture.height != kGlyphSide) {
            glyph.texture = Keep(MakeLetterTexture(std::move(picture), path.c_str()));
            continue;
        }
        const int left = index % kSheetColumns * kCell;
        const int bottom = index / kSheetColumns * kCell;
        CopyToSheet(picture, left, bottom, sheet);
        const auto share = [](int place) { return static_cast<float>(place) / kSheetSide; };
        glyph.picture = {share(left + kMargin), share(bottom + kMargin),
                         share(left + kMargin + kGlyphSide), share(bottom + kMargin + kGlyphSide)};
        onSheet.push_back(&glyph);
    }
    if (onSheet.empty()) return;
    const GLuint texture = Keep(MakeLetterTexture(std::move(sheet), "res/chars"));
    for (Glyph* glyph : onSheet) glyph->texture = texture;
}

GLResources::~GLResources() {
    glDeleteTextures(static_cast<GLsizei>(owned_.size()), owned_.data());
}

GLuint GLResources::Keep(GLuint texture) {
    if (texture != 0) owned_.push_back(texture);
    return texture;
}

GLuint GLResources::Image(uint32_t number) {
    if (number >= kImageCount) return 0;
    if (images[number] == 0) images[number] = Keep(LoadTexture(ImagePath(number).c_str()));
    return images[number];
}

GLuint GLResources::LoadMipmappedTexture(uint32_t firstImage, int levels) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    for (int level = 0; level < levels; ++level) {
        const std::string path = ImagePath(firstImage + static_cast<uint32_t>(level));
        Bitmap image;
        if (!LoadBitmap(path.c_str(), image)) continue;
        glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
        glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 0);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, levels - 1);
        UploadLevel(level, image, path.c_str());
    }
    if (firstImage < kImageCount) images[firstImage] = texture;
    return Keep(texture);
}

}  // namespace brindle
