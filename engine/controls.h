// SPDX-License-Identifier: ISC
/// From the values on the control ports to what bands and sections glide to.
#pragma once

namespace brindle {

struct EqInstance;

/// What ports stand for until a first valid value is read: all off and Flat, 0 dB, 1 kHz, Q 1.
void set_default_controls(EqInstance& eq) noexcept;

/// Reads all control ports. A port that is not connected, or whose value is no finite number, keeps
/// its last valid value; values so far outside the port's range that they would not leave a usable
/// filter are held at the nearest that do. Real-time safe.
void read_controls(EqInstance& eq) noexcept;

/// Puts the stages' coefficients and crossfade weights at the disposal of the cascade. Real-time
/// safe.
void update_weights(EqInstance& eq) noexcept;

/// One control tick: glides toward what was read, then new coefficients for all sixteen stages.
/// Real-time safe.
void control_tick(EqInstance& eq) noexcept;

}  // namespace brindle
