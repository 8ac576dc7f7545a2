// SPDX-License-Identifier: ISC
#include "host/plot.h"

#include <cairo-svg.h>
#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

#include "host/cairo_output.h"
#include "host/output_file.h"

namespace brindle {
namespace {

// Sizes are in units of the picture; a PNG has two pixels a unit.
constexpr double kWidth = 1000.0;
constexpr double kHeight = 540.0;
constexpr double kPixelsPerUnit = 2.0;
constexpr double kLeft = 62.0;
constexpr double kRight = 976.0;
constexpr double kTop = 72.0;
constexpr double kBottom = 488.0;

constexpr int kLowHz = 20;
constexpr int kHighHz = 20000;
constexpr int kStepDb = 6;

constexpr const char* kEllipsis = "\u2026";
constexpr const char* kMinus = "\u2212";

struct Color {
    double red, green, blue, alpha;
};
constexpr Color kPaper = {1.00, 1.00, 1.00, 1.0};
constexpr Color kFineGrid = {0.92, 0.93, 0.94, 1.0};
constexpr Color kGrid = {0.80, 0.82, 0.85, 1.0};
constexpr Color kZero = {0.42, 0.45, 0.50, 1.0};
constexpr Color kInk = {0.13, 0.15, 0.18, 1.0};
constexpr Color kFaintInk = {0.40, 0.43, 0.48, 1.0};
constexpr Color kCurve = {0.80, 0.33, 0.05, 1.0};
constexpr Color kFill = {0.80, 0.33, 0.05, 0.13};

struct ContextDestroy {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using ContextPtr = std::unique_ptr<cairo_t, ContextDestroy>;

/// Gives back what Cairo and Fontconfig keep of the fonts that were used.
struct FontCaches {
    FontCaches() = default;
    ~FontCaches() {
        cairo_debug_reset_static_data();
        FcFini();
    }
    FontCaches(const FontCaches&) = delete;
    FontCaches& operator=(const FontCaches&) = delete;
};

enum class Align { Left, Center, Right };

/// The plane of the plot: frequencies and gains to positions.
struct Axes {
    int low_db;
    int high_db;

    static double x(double freq_hz) {
        return kLeft +
               (kRight - kLeft) * std::log(freq_hz / kLowHz) / std::log(1.0 * kHighHz / kLowHz);
    }
    [[nodiscard]] double y(double gain_db) const {
        return kBottom - (kBottom - kTop) * (gain_db - low_db) / (high_db - low_db);
    }
};

void set_color(cairo_t* context, const Color& color) {
    cairo_set_source_rgba(context, color.red, color.green, color.blue, color.alpha);
}

void draw_line(cairo_t* context, double x0, double y0, double x1, double y1, const Color& color,
               double width) {
    set_color(context, color);
    cairo_set_line_width(context, width);
    cairo_move_to(context, x0, y0);
    cairo_line_to(context, x1, y1);
    cairo_stroke(context);
}

/// Text standing on the line y.
void draw_text(cairo_t* context, double x, double y, const std::string& text, double size,
               const Color& color, Align align) {
    cairo_set_font_size(context, size);
    cairo_text_extents_t extents;
    cairo_text_extents(context, text.c_str(), &extents);
    if (align == Align::Center) x -= extents.x_advance / 2.0;
    if (align == Align::Right) x -= extents.x_advance;
    set_color(context, color);
    cairo_move_to(context, x, y);
    cairo_show_text(context, text.c_str());
}

/// As much of the text as fits between the left and right edge.
std::string shortened(cairo_t* context, std::string text, double size) {
    cairo_set_font_size(context, size);
    const auto fits = [&](const std::string& candidate) {
        cairo_text_extents_t extents;
        cairo_text_extents(context, candidate.c_str(), &extents);
        return extents.x_advance <= kRight - kLeft;
    };
    if (fits(text)) return text;
    while (!text.empty() && !fits(text + kEllipsis)) text.pop_back();
    return text + kEllipsis;
}

/// Whole steps that hold the curve: never less than +-18 dB, never more than 72 dB down.
Axes axes_for(const std::vector<ResponsePoint>& points) {
    constexpr double kSpare = 0.1;  // of a step, so that the curve does not touch the edge
    int low = -3;
    int high = 3;
    for (const ResponsePoint& point : points) {
        low = std::min(low, static_cast<int>(std::floor(point.gain_db / kStepDb - kSpare)));
        high = std::max(high, static_cast<int>(std::ceil(point.gain_db / kStepDb + kSpare)));
    }
    return {kStepDb * std::max(low, -12), kStepDb * high};
}

void draw_frequency_grid(cairo_t* context) {
    for (int decade = 10; decade <= kHighHz; decade *= 10) {
        for (int digit = 1; digit <= 9; ++digit) {
            const int freq_hz = decade * digit;
            if (freq_hz < kLowHz || freq_hz > kHighHz) continue;
            const bool labelled = digit == 1 || digit == 2 || digit == 5;
            const double x = Axes::x(freq_hz);
            draw_line(context, x, kTop, x, kBottom, labelled ? kGrid : kFineGrid, 1.0);
            if (!labelled) continue;
            const std::string label =
                freq_hz < 1000 ? std::to_string(freq_hz) : std::to_string(freq_hz / 1000) + 'k';
            draw_text(context, x, kBottom + 20.0, label, 13.0, kFaintInk, Align::Center);
        }
    }
    draw_text(context, (kLeft + kRight) / 2.0, kHeight - 12.0, "Frequency [Hz]", 13.0, kFaintInk,
              Align::Center);
}

void draw_gain_grid(cairo_t* context, const Axes& axes) {
    for (int gain_db = axes.low_db; gain_db <= axes.high_db; gain_db += kStepDb) {
        const bool is_zero = gain_db == 0;
        const double y = axes.y(gain_db);
        draw_line(context, kLeft, y, kRight, y, is_zero ? kZero : kGrid, is_zero ? 1.5 : 1.0);
        const std::string sign = gain_db > 0 ? "+" : gain_db < 0 ? kMinus : "";
        draw_text(context, kLeft - 8.0, y + 4.5, sign + std::to_string(std::abs(gain_db)), 13.0,
                  kFaintInk, Align::Right);
    }
    cairo_save(context);
    cairo_translate(context, 18.0, (kTop + kBottom) / 2.0);
    cairo_rotate(context, -std::acos(0.0));
    draw_text(context, 0.0, 0.0, "Gain [dB]", 13.0, kFaintInk, Align::Center);
    cairo_restore(context);
}

void draw_curve(cairo_t* context, const Axes& axes, const std::vector<ResponsePoint>& points) {
    if (points.empty()) return;
    cairo_save(context);
    cairo_rectangle(context, kLeft, kTop, kRight - kLeft, kBottom - kTop);
    cairo_clip(context);
    // Far outside, positions would exceed what Cairo's fixed-point numbers hold.
    const auto y = [&](const ResponsePoint& point) {
        return axes.y(
            std::clamp<double>(point.gain_db, axes.low_db - kStepDb, axes.high_db + kStepDb));
    };
    for (const ResponsePoint& point : points) {
        cairo_line_to(context, Axes::x(point.freq_hz), y(point));
    }
    cairo_path_t* curve = cairo_copy_path(context);
    cairo_line_to(context, Axes::x(points.back().freq_hz), axes.y(0.0));
    cairo_line_to(context, Axes::x(points.front().freq_hz), axes.y(0.0));
    set_color(context, kFill);
    cairo_fill(context);
    cairo_append_path(context, curve);
    cairo_path_destroy(curve);
    set_color(context, kCurve);
    cairo_set_line_width(context, 2.5);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(context);
    cairo_restore(context);
}

void draw(cairo_surface_t* surface, const std::vector<ResponsePoint>& points,
          const PlotText& text) {
    const ContextPtr owner(cairo_create(surface));
    cairo_t* context = owner.get();
    cairo_select_font_face(context, "Liberation Sans", CAIRO_FONT_SLANT_NORMAL,
                           CAIRO_FONT_WEIGHT_NORMAL);
    set_color(context, kPaper);
    cairo_paint(context);
    const Axes axes = axes_for(points);
    draw_frequency_grid(context);
    draw_gain_grid(context, axes);
    draw_curve(context, axes, points);
    draw_text(context, kLeft, 32.0, text.title, 19.0, kInk, Align::Left);
    draw_text(context, kLeft, 56.0, shortened(context, text.note, 13.0), 13.0, kFaintInk,
              Align::Left);
}

}  // namespace

void plot_png(OutputFile& output, const std::vector<ResponsePoint>& points, const PlotText& text) {
    const FontCaches caches;
    const SurfacePtr surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(kWidth * kPixelsPerUnit),
                                   static_cast<int>(kHeight * kPixelsPerUnit)));
    cairo_surface_set_device_scale(surface.get(), kPixelsPerUnit, kPixelsPerUnit);
    draw(surface.get(), points, text);
    cairo_surface_write_to_png_stream(surface.get(), write_to_output, &output);
}

void plot_svg(OutputFile& output, const std::vector<ResponsePoint>& points, const PlotText& text) {
    const FontCaches caches;
    const SurfacePtr surface(
        cairo_svg_surface_create_for_stream(write_to_output, &output, kWidth, kHeight));
    draw(surface.get(), points, text);
    cairo_surface_finish(surface.get());
}

}  // namespace brindle
