// SPDX-License-Identifier: ISC
/// From the control ports' values to the targets and weights of the stages.
#pragma once

namespace brindle {

struct EqInstance;

/// Sets the values that hold until a port yields a valid one: off, Flat, 0 dB, 1 kHz, Q 1.
void set_default_controls(EqInstance& eq) noexcept;

/// Reads all control ports. A port that is not connected or not finite keeps its last valid value.
/// A value outside the port's range that would make an unusable filter becomes the nearest usable
/// one. Real-time safe.
void read_controls(EqInstance& eq) noexcept;

/// Copies the stages' coefficients and crossfade weights to where the cascade reads them. Real-time
/// safe.
void update_weights(EqInstance& eq) noexcept;

/// Performs a control tick: glides all values toward their targets, then designs all stages.
/// Real-time safe.
void control_tick(EqInstance& eq) noexcept;

}  // namespace brindle
