// SPDX-License-Identifier: ISC
/// The definition of the spectrum analyser, one sample and one bin at a time. The product's
/// analyser yields the same bits. Shares no code with the product.
#pragma once

#include <cstdint>
#include <vector>

namespace brindle::reference {

/// y = b0·x + b1·x[-1] + b2·x[-2] + a1·y[-1] + a2·y[-2], in transposed direct form II.
struct LowPass {
    double b0 = 0, b1 = 0, b2 = 0, a1 = 0, a2 = 0;
    double s1 = 0, s2 = 0;

    double operator()(double x);
};

struct Bin {
    double step_cos = 0, step_sin = 0;
    double re = 0.8, im = 0.0;
    double magnitude2 = 0;
    double power = 0;
    LowPass re_path, im_path;
};

class Analyser {
  public:
    explicit Analyser(double rate);

    /// One sample; one that is not finite counts as silence.
    void add(float x);

    bool normalise = true;
    std::vector<std::vector<float>> rows;
    int row_index = 0;
    std::vector<Bin> bins;

  private:
    void renormalise();
    void finish_row();

    int frame_mask;
    int32_t noise_state = 1;
    double noise = 0.0;
    uint16_t counter = 0;
};

}  // namespace brindle::reference
