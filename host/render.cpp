// SPDX-License-Identifier: ISC
#include "host/render.h"

#include <cmath>
#include <cstdio>
#include <vector>

#include "host/audio_file.h"
#include "host/interrupt.h"
#include "host/output_file.h"
#include "host/plugin.h"
#include "host/progress.h"
#include "host/user_error.h"

namespace brindle {
namespace {

void report(const RenderRequest& request, const SF_INFO& info, int64_t frames,
            const AudioWriter& writer) {
    std::printf("Wrote %s (%.1f s, %s, %d Hz, peak %.1f dB).\n", request.output.c_str(),
                static_cast<double>(frames) / info.samplerate,
                info.channels == 1 ? "mono" : "stereo", info.samplerate,
                20.0 * std::log10(static_cast<double>(writer.peak()) + 1e-10));
    if (writer.clipped() == 0) return;
    std::fprintf(stderr,
                 "brindle: %lld samples lay above full scale and were clipped; lower the trim by "
                 "%.1f dB to avoid that.\n",
                 static_cast<long long>(writer.clipped()),
                 std::ceil(200.0 * std::log10(static_cast<double>(writer.peak()))) / 10.0);
}

}  // namespace

void render(Bundle& bundle, const RenderRequest& request) {
    const ControlValues values = request.settings.resolve(bundle);
    AudioReader reader(request.input);
    const SF_INFO& info = reader.info();
    if (info.channels > 2) {
        throw UserError("cannot process " + request.input + ": it has " +
                        std::to_string(info.channels) + " channels, the plugin takes one or two.");
    }
    OutputFile output(request.output);
    AudioWriter writer(output, reader);
    Plugin plugin(bundle, info.channels, info.samplerate, request.block);
    plugin.set(values);
    if (request.settle) plugin.settle();

    Progress progress("Rendering", info.frames);
    std::vector<float> audio(size_t{request.block} * static_cast<size_t>(info.channels));
    int64_t done = 0;
    while (const size_t count = reader.read(audio.data(), request.block)) {
        throw_if_interrupted();
        plugin.process(audio.data(), audio.data(), count);
        writer.write(audio.data(), count);
        done += static_cast<int64_t>(count);
        progress.advance_to(done);
    }
    writer.close();
    output.commit();
    report(request, info, done, writer);
}

}  // namespace brindle
