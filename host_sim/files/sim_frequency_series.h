// What one input gave in a run: its output values by index, with what is
// needed to put them on the input's time axis.
#pragma once

#include "sim_output_capture.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zelvar_sim {

struct FrequencySeries {
    std::string file;    // the input's file
    std::string channel; // the input's LongName
    double sample_rate = 0.0;      // of the input, Hz
    std::uint64_t window_step = 0; // input samples between two output values
    std::vector<CapturedBlock> blocks; // as the plug-in wrote them

    // The output index and value of every captured value, in index order.
    struct Point {
        std::uint64_t index = 0;
        double value = 0.0;
    };
    std::vector<Point> points() const;

    // Calls visit(index, value) for every captured value in index order.
    // Blocks that follow each other (as a run writes them) are walked in
    // place; only blocks out of order pay for the sorted copy of points().
    template <typename Visit>
    void forEachPoint(Visit visit) const
    {
        if (!inIndexOrder()) {
            for (const Point& point : points()) {
                visit(point.index, point.value);
            }
            return;
        }
        for (const CapturedBlock& block : blocks) {
            for (std::size_t i = 0; i < block.values.size(); ++i) {
                visit(block.first_index + i, block.values[i]);
            }
        }
    }
    // Every block starts at or after the end of the one before it.
    bool inIndexOrder() const;

    // Index × step / sample rate: where value `index` stands, in seconds.
    double timeOf(std::uint64_t index) const;
};

// The step behind an output rate: input rate over output rate, to the
// nearest whole sample (the output rate is the input rate over the step).
std::uint64_t windowStepOf(double input_rate, double output_rate);

} // namespace zelvar_sim
