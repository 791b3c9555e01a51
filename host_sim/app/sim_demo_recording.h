// The recording that zelvar-sim runs on when it is given none: two inputs at
// 10 kHz, four seconds each, whose frequencies are known at every sample.
#pragma once

#include "sim_recording.h"

#include <memory>
#include <string>
#include <vector>

namespace zelvar_sim {

struct DemoInput {
    std::string long_name;
    double sample_rate = 0.0;
    std::shared_ptr<const Recording> recording;
    // What the signal is, in a person's words.
    std::string description;
};

// "Stepped tone": 250 Hz, a step to 500 Hz at 1 s, a glide from 500 Hz up
// to 1500 Hz between 2 s and 3 s, then 1500 Hz. "Gliding tone": 1200 Hz
// with a gap of 0.15 s at 1.5 s, a glide down to 300 Hz between 2.5 s and
// 3.5 s, then 300 Hz, under a little noise.
std::vector<DemoInput> demoInputs();

} // namespace zelvar_sim
