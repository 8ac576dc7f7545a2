// SPDX-License-Identifier: ISC
#include <strings.h>

#include <charconv>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "contract/brindle.h"
#include "host/bundle.h"
#include "host/cairo_output.h"
#include "host/command.h"
#include "host/editor.h"
#include "host/interrupt.h"
#include "host/live_plugin.h"
#include "host/output_file.h"
#include "host/plugin.h"
#include "host/signal_source.h"
#include "host/top_window.h"
#include "host/user_error.h"
#include "host/virtual_display.h"

namespace brindle {
namespace {

struct ScreenshotRequest {
    std::string output;
    Settings settings;
    std::string size = "1000x600";  ///< WIDTHxHEIGHT, pixels
};

constexpr PixelSize kSmallest = {500, 300};
constexpr PixelSize kLargest = {7680, 4320};
/// Ticks of audio before the first frame: as long as the analyser's display reaches back.
constexpr int kUnseenTicks = 3 * Editor::kTicks;
/// Frames drawn, until the animations have ended.
constexpr int kSeenTicks = 20;

PixelSize size_in(const std::string& text) {
    PixelSize size;
    const char* end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    if (width.ec == std::errc() && width.ptr != end && *width.ptr == 'x') {
        const auto height = std::from_chars(width.ptr + 1, end, size.height);
        if (height.ec == std::errc() && height.ptr == end && size.width >= kSmallest.width &&
            size.height >= kSmallest.height && size.width <= kLargest.width &&
            size.height <= kLargest.height) {
            return size;
        }
    }
    throw UserError('"' + text + "\" is no size from 500x300 to 7680x4320 pixels.");
}

/// The editor's picture, 0x00RRGGBB by rows.
std::vector<uint32_t> picture_of_editor(Bundle& bundle, const ControlValues& values,
                                        PixelSize size) {
    TopWindow window(kProductName, size, TopWindow::kBare);
    PinkNoise source;
    Plugin plugin(bundle, source.channels(), source.rate(), LivePlugin::kBlock);
    plugin.set(values);
    plugin.settle();
    LivePlugin live(bundle, plugin, source);
    Editor editor(bundle, live, window, source.channels(), source.rate());
    window.resize(size);
    window.show();
    const auto frames = static_cast<size_t>(source.rate()) / Editor::kTicks;
    std::vector<float> unheard(frames * LivePlugin::kOutputs);
    for (int i = 0; i < kUnseenTicks + kSeenTicks; ++i) {
        throw_if_interrupted();
        live.play(unheard.data(), frames);
        if (i < kUnseenTicks) {
            editor.report();
        } else {
            editor.tick();
        }
    }
    std::vector<uint32_t> pixels(static_cast<size_t>(size.width) *
                                 static_cast<size_t>(size.height));
    window.read_pixels(pixels.data(), size);
    return pixels;
}

void write_png(OutputFile& output, std::vector<uint32_t>& pixels, PixelSize size) {
    const int stride = size.width * static_cast<int>(sizeof(uint32_t));
    const SurfacePtr surface(
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels.data()),
                                            CAIRO_FORMAT_RGB24, size.width, size.height, stride));
    cairo_surface_write_to_png_stream(surface.get(), write_to_output, &output);
}

void screenshot(const ProgramOptions& options, const ScreenshotRequest& request) {
    Bundle bundle(options.bundle);
    const std::string extension = std::filesystem::path(request.output).extension();
    if (!OutputFile::is_stream(request.output) && strcasecmp(extension.c_str(), ".png") != 0) {
        throw UserError("cannot write " + request.output + ": its name has to end in .png.");
    }
    const PixelSize size = size_in(request.size);
    const ControlValues values = request.settings.resolve(bundle);
    OutputFile output(request.output, options.existing());
    std::optional<VirtualDisplay> display;
    if (!TopWindow::has_room(size)) display.emplace(size.width, size.height);
    std::vector<uint32_t> pixels = picture_of_editor(bundle, values, size);
    write_png(output, pixels, size);
    output.commit();
    say_written(request.output);
}

}  // namespace

void add_screenshot(CLI::App& program, const ProgramOptions& options) {
    CLI::App* command = program.add_subcommand("screenshot", "Take a picture of the editor");
    const auto request = std::make_shared<ScreenshotRequest>();
    command->add_option("OUT", request->output, "File to write: .png, or - for standard output")
        ->required();
    add_settings(*command, request->settings);
    command->add_option("--size", request->size, "Size of the editor in pixels")
        ->type_name("WIDTHxHEIGHT")
        ->capture_default_str();
    command->callback([request, &options] { screenshot(options, *request); });
}

}  // namespace brindle
