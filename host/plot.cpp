// SPDX-License-Identifier: ISC
#include "host/plot.h"

#include <cairo-svg.h>
#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <utility>

#include "host/cairo_output.h"
#include "host/measurement.h"
#include "host/output_file.h"

namespace brindle {
namespace {

// Sizes are in units of the picture; a PNG has two pixels a unit.
constexpr double kWidth = 1000.0;
constexpr double kPixelsPerUnit = 2.0;
constexpr double kLeft = 62.0;
constexpr double kRight = 976.0;
constexpr double kTop = 72.0;
constexpr double kFirstHeight = 416.0;
constexpr double kNextHeight = 200.0;
constexpr double kGap = 38.0;  // for the labels of frequencies
constexpr double kBelow = 52.0;
constexpr double kRightScale = 52.0;  // for the labels of scales on the right

constexpr int kLowHz = 20;
constexpr int kHighHz = 20000;

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
constexpr double kFillAlpha = 0.13;
/// By PlotInk.
constexpr Color kInks[] = {{0.80, 0.33, 0.05, 1.0},
                           {0.10, 0.42, 0.75, 1.0},
                           {0.10, 0.52, 0.30, 1.0},
                           {0.48, 0.25, 0.65, 1.0}};

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

double x_at(double freq_hz) {
    return kLeft + (kRight - kLeft) * std::log(freq_hz / kLowHz) / std::log(1.0 * kHighHz / kLowHz);
}

/// Where a panel stands in the picture.
struct Area {
    double top;
    double bottom;

    [[nodiscard]] double y(const PlotScale& scale, double value) const {
        return bottom - (bottom - top) * (value - scale.low) / (scale.high - scale.low);
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

const Color& ink_color(PlotInk ink) {
    return kInks[static_cast<size_t>(ink)];
}

int step_count(const PlotScale& scale) {
    return static_cast<int>(std::lround((scale.high - scale.low) / scale.step));
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

void draw_frequency_grid(cairo_t* context, const Area& area) {
    for (int decade = 10; decade <= kHighHz; decade *= 10) {
        for (int digit = 1; digit <= 9; ++digit) {
            const int freq_hz = decade * digit;
            if (freq_hz < kLowHz || freq_hz > kHighHz) continue;
            const bool labelled = digit == 1 || digit == 2 || digit == 5;
            const double x = x_at(freq_hz);
            draw_line(context, x, area.top, x, area.bottom, labelled ? kGrid : kFineGrid, 1.0);
            if (!labelled) continue;
            const std::string label =
                freq_hz < 1000 ? std::to_string(freq_hz) : std::to_string(freq_hz / 1000) + 'k';
            draw_text(context, x, area.bottom + 20.0, label, 13.0, kFaintInk, Align::Center);
        }
    }
}

std::string value_label(const PlotScale& scale, double value) {
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%g", std::fabs(value));
    return (value < 0.0                      ? kMinus
            : value > 0.0 && scale.low < 0.0 ? "+"
                                             : "") +
           std::string(digits.data());
}

/// The numbers of a scale and its name, left or right of the panel.
void draw_scale(cairo_t* context, const Area& area, const PlotScale& scale, bool on_right,
                const Color& color) {
    for (int i = 0; i <= step_count(scale); ++i) {
        const double value = scale.low + i * scale.step;
        draw_text(context, on_right ? kRight + 8.0 : kLeft - 8.0, area.y(scale, value) + 4.5,
                  value_label(scale, value), 13.0, color, on_right ? Align::Left : Align::Right);
    }
    cairo_save(context);
    cairo_translate(context, on_right ? kWidth + kRightScale - 12.0 : 18.0,
                    (area.top + area.bottom) / 2.0);
    cairo_rotate(context, -std::acos(0.0));
    draw_text(context, 0.0, 0.0, scale.label, 13.0, color, Align::Center);
    cairo_restore(context);
}

void draw_value_grid(cairo_t* context, const Area& area, const PlotScale& scale) {
    for (int i = 0; i <= step_count(scale); ++i) {
        const double value = scale.low + i * scale.step;
        const bool is_zero = value == 0.0;
        const double y = area.y(scale, value);
        draw_line(context, kLeft, y, kRight, y, is_zero ? kZero : kGrid, is_zero ? 1.5 : 1.0);
    }
}

void draw_curve(cairo_t* context, const Area& area, const PlotScale& scale,
                const PlotCurve& curve) {
    const std::vector<PlotPoint>& points = curve.points;
    if (points.empty()) return;
    cairo_save(context);
    cairo_rectangle(context, kLeft, area.top, kRight - kLeft, area.bottom - area.top);
    cairo_clip(context);
    for (const PlotPoint& point : points) {
        if (std::isnan(point.value)) {
            cairo_new_sub_path(context);
            continue;
        }
        // Far outside, positions would exceed what Cairo's fixed-point numbers hold.
        const double value =
            std::clamp(point.value, scale.low - scale.step, scale.high + scale.step);
        cairo_line_to(context, x_at(point.freq_hz), area.y(scale, value));
    }
    const Color& color = ink_color(curve.ink);
    if (curve.is_filled) {
        cairo_path_t* line = cairo_copy_path(context);
        cairo_line_to(context, x_at(points.back().freq_hz), area.y(scale, 0.0));
        cairo_line_to(context, x_at(points.front().freq_hz), area.y(scale, 0.0));
        set_color(context, {color.red, color.green, color.blue, kFillAlpha});
        cairo_fill(context);
        cairo_append_path(context, line);
        cairo_path_destroy(line);
    }
    set_color(context, color);
    cairo_set_line_width(context, 2.5);
    cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(context);
    cairo_restore(context);
}

void draw_panel(cairo_t* context, const Area& area, const PlotPanel& panel) {
    draw_frequency_grid(context, area);
    draw_value_grid(context, area, panel.left);
    // Two scales have their curves' colours, so that one can tell which is whose.
    const auto color = [&](const PlotScale& scale) {
        return panel.right && !scale.curves.empty() ? ink_color(scale.curves.front().ink)
                                                    : kFaintInk;
    };
    draw_scale(context, area, panel.left, false, color(panel.left));
    for (const PlotCurve& curve : panel.left.curves) draw_curve(context, area, panel.left, curve);
    if (!panel.right) return;
    draw_scale(context, area, *panel.right, true, color(*panel.right));
    for (const PlotCurve& curve : panel.right->curves) {
        draw_curve(context, area, *panel.right, curve);
    }
}

/// The labels of the first panel's curves, in its upper right corner.
void draw_legend(cairo_t* context, const PlotPanel& panel) {
    double y = kTop + 22.0;
    for (const PlotCurve& curve : panel.left.curves) {
        if (curve.label.empty()) continue;
        draw_text(context, kRight - 12.0, y, curve.label, 13.0, ink_color(curve.ink), Align::Right);
        y += 18.0;
    }
}

double picture_width(const Plot& plot) {
    const bool has_right = std::ranges::any_of(
        plot.panels, [](const PlotPanel& panel) { return panel.right.has_value(); });
    return kWidth + (has_right ? kRightScale : 0.0);
}

double picture_height(const Plot& plot) {
    const auto further = static_cast<double>(std::max<size_t>(plot.panels.size(), 1) - 1);
    return kTop + kFirstHeight + further * (kGap + kNextHeight) + kBelow;
}

void draw(cairo_surface_t* surface, const Plot& plot) {
    const ContextPtr owner(cairo_create(surface));
    cairo_t* context = owner.get();
    cairo_select_font_face(context, "Liberation Sans", CAIRO_FONT_SLANT_NORMAL,
                           CAIRO_FONT_WEIGHT_NORMAL);
    set_color(context, kPaper);
    cairo_paint(context);
    draw_text(context, kLeft, 32.0, plot.title, 19.0, kInk, Align::Left);
    draw_text(context, kLeft, 56.0, shortened(context, plot.note, 13.0), 13.0, kFaintInk,
              Align::Left);
    Area area = {kTop, kTop + kFirstHeight};
    for (const PlotPanel& panel : plot.panels) {
        draw_panel(context, area, panel);
        area = {area.bottom + kGap, area.bottom + kGap + kNextHeight};
    }
    if (!plot.panels.empty()) draw_legend(context, plot.panels.front());
    draw_text(context, (kLeft + kRight) / 2.0, picture_height(plot) - 12.0, "Frequency [Hz]", 13.0,
              kFaintInk, Align::Center);
}

/// The least and the greatest of all values that are numbers, and 0.
std::pair<double, double> bounds(const std::vector<PlotCurve>& curves) {
    std::pair<double, double> found = {0.0, 0.0};
    for (const PlotCurve& curve : curves) {
        for (const PlotPoint& point : curve.points) {
            if (std::isnan(point.value)) continue;
            found = {std::min(found.first, point.value), std::max(found.second, point.value)};
        }
    }
    return found;
}

}  // namespace

PlotScale gain_scale(std::vector<PlotCurve> curves) {
    constexpr double kStepDb = 6.0;
    constexpr double kSpare = 0.1;  // of a step, so that the curve does not touch the edge
    const auto [least, greatest] = bounds(curves);
    const double low = std::clamp(std::floor(least / kStepDb - kSpare), -12.0, -3.0);
    const double high = std::max(3.0, std::ceil(greatest / kStepDb + kSpare));
    return {"Gain [dB]", low * kStepDb, high * kStepDb, kStepDb, std::move(curves)};
}

PlotScale round_scale(const std::string& label, int count, std::vector<PlotCurve> curves) {
    constexpr double kRoundSteps[] = {1.0, 2.0, 5.0};
    constexpr double kFinest = 0.001;
    const auto [least, greatest] = bounds(curves);
    for (double power = kFinest;; power *= 10.0) {
        for (const double digit : kRoundSteps) {
            const double step = digit * power;
            const double low = step * std::floor(least / step);
            const double high = low + step * count;
            if (high >= greatest) return {label, low, high, step, std::move(curves)};
        }
    }
}

PlotPanel phase_panel(const std::vector<ResponsePoint>& points) {
    constexpr double kSilentDb = -100.0;
    constexpr double kBreak = std::numeric_limits<double>::quiet_NaN();
    PlotCurve phase = {"", PlotInk::Green, {}};
    PlotCurve delay = {"", PlotInk::Violet, {}};
    double before_deg = 0.0;
    for (const ResponsePoint& point : points) {
        const bool silent = point.gain_db < kSilentDb;
        if (std::abs(point.phase_deg - before_deg) > 180.0) {
            phase.points.push_back({point.freq_hz, kBreak});
        }
        phase.points.push_back({point.freq_hz, silent ? kBreak : point.phase_deg});
        delay.points.push_back({point.freq_hz, silent ? kBreak : point.delay_ms});
        before_deg = point.phase_deg;
    }
    constexpr int kSteps = 4;
    return {{"Phase [\u00b0]", -180.0, 180.0, 360.0 / kSteps, {phase}},
            round_scale("Group delay [ms]", kSteps, {delay})};
}

void plot_png(OutputFile& output, const Plot& plot) {
    const FontCaches caches;
    const SurfacePtr surface(cairo_image_surface_create(
        CAIRO_FORMAT_RGB24, static_cast<int>(picture_width(plot) * kPixelsPerUnit),
        static_cast<int>(picture_height(plot) * kPixelsPerUnit)));
    cairo_surface_set_device_scale(surface.get(), kPixelsPerUnit, kPixelsPerUnit);
    draw(surface.get(), plot);
    cairo_surface_write_to_png_stream(surface.get(), write_to_output, &output);
}

void plot_svg(OutputFile& output, const Plot& plot) {
    const FontCaches caches;
    const SurfacePtr surface(cairo_svg_surface_create_for_stream(
        write_to_output, &output, picture_width(plot), picture_height(plot)));
    draw(surface.get(), plot);
    cairo_surface_finish(surface.get());
}

}  // namespace brindle
