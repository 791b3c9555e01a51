// How far a run of zelvar-sim has got, for the progress line on a terminal.
// Each host session reports the samples the host clock has passed in a slot
// of memory that forked child processes share with the parent, so the
// parent draws one line for sessions that run side by side. The count comes
// from the span of each process step the host sends, not from the data path.
#pragma once

#include "sim_message_record.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace zelvar_sim {

class ProgressBoard {
public:
    explicit ProgressBoard(std::size_t sessions);
    ProgressBoard(const ProgressBoard&) = delete;
    ProgressBoard& operator=(const ProgressBoard&) = delete;
    ~ProgressBoard();

    void reach(std::size_t session, std::uint64_t samples);
    std::uint64_t samplesReached() const;

    // An observer for one session's host: `samples_per_second` is the sum of
    // its inputs' rates, `duration` its recording's length in seconds.
    MessageObserver observerFor(std::size_t session, double samples_per_second, double duration,
                                MessageObserver also = {});

private:
    std::atomic<std::uint64_t>* m_slots = nullptr;
    std::size_t m_count = 0;
};

// The line itself: percent, samples per second and time left, redrawn in
// place at most four times a second, on standard error.
class ProgressLine {
public:
    ProgressLine(const ProgressBoard& board, std::uint64_t total_samples);
    ~ProgressLine() { clear(); }

    void update();
    void clear();

private:
    const ProgressBoard& m_board;
    std::uint64_t m_total;
    std::chrono::steady_clock::time_point m_start;
    std::chrono::steady_clock::time_point m_last_draw;
    bool m_shown = false;
};

} // namespace zelvar_sim
