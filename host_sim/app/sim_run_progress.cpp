#include "sim_run_progress.h"

#include "zlrbase_messages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

namespace zelvar_sim {
namespace {

// The end of a process step's span in seconds, from its Start telegram
// (<End ticks="..." frequency="..."/>); negative when it has none.
double spanEnd(const std::string& start)
{
    const auto end = start.find("<End ");
    if (end == std::string::npos) {
        return -1.0;
    }
    const auto ticks = start.find("ticks=\"", end);
    const auto frequency = start.find("frequency=\"", end);
    if (ticks == std::string::npos || frequency == std::string::npos) {
        return -1.0;
    }
    const double rate = std::strtod(start.c_str() + frequency + 11, nullptr);
    return rate > 0.0 ? std::strtod(start.c_str() + ticks + 7, nullptr) / rate : -1.0;
}

std::string clockText(double seconds)
{
    const auto whole = static_cast<long long>(std::max(0.0, seconds) + 0.5);
    char text[32];
    if (whole >= 3600) {
        std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
    } else {
        std::snprintf(text, sizeof text, "%lld:%02lld", whole / 60, whole % 60);
    }
    return text;
}

void writeErr(const std::string& text)
{
    ssize_t ignored = ::write(STDERR_FILENO, text.data(), text.size());
    (void)ignored;
}

} // namespace

ProgressBoard::ProgressBoard(std::size_t sessions) : m_count(sessions)
{
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free,
                  "the counters are shared between processes");
    const std::size_t bytes = std::max<std::size_t>(1, sessions) * sizeof(std::atomic<std::uint64_t>);
    void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::bad_alloc();
    }
    m_slots = static_cast<std::atomic<std::uint64_t>*>(memory);
    for (std::size_t i = 0; i < sessions; ++i) {
        new (&m_slots[i]) std::atomic<std::uint64_t>(0);
    }
}

ProgressBoard::~ProgressBoard()
{
    munmap(m_slots, std::max<std::size_t>(1, m_count) * sizeof(std::atomic<std::uint64_t>));
}

void ProgressBoard::reach(std::size_t session, std::uint64_t samples)
{
    m_slots[session].store(samples, std::memory_order_relaxed);
}

std::uint64_t ProgressBoard::samplesReached() const
{
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < m_count; ++i) {
        sum += m_slots[i].load(std::memory_order_relaxed);
    }
    return sum;
}

MessageObserver ProgressBoard::observerFor(std::size_t session, double samples_per_second,
                                           double duration, MessageObserver also)
{
    return [this, session, samples_per_second, duration,
            also = std::move(also)](const ObservedMessage& message) {
        if (also) {
            also(message);
        }
        if (message.direction == MessageDirection::host_to_plugin &&
            message.message->id == zlr::PLUGIN_TASK_PROCESS) {
            const double end = std::min(spanEnd(message.message->text), duration);
            if (end > 0.0) {
                reach(session, static_cast<std::uint64_t>(end * samples_per_second));
            }
        }
    };
}

ProgressLine::ProgressLine(const ProgressBoard& board, std::uint64_t total_samples)
    : m_board(board), m_total(std::max<std::uint64_t>(1, total_samples)),
      m_start(std::chrono::steady_clock::now()), m_last_draw(m_start)
{
}

void ProgressLine::update()
{
    const auto now = std::chrono::steady_clock::now();
    if (now - m_last_draw < std::chrono::milliseconds(250)) {
        return;
    }
    m_last_draw = now;
    const double elapsed = std::chrono::duration<double>(now - m_start).count();
    const std::uint64_t done = std::min(m_board.samplesReached(), m_total);
    const double rate = elapsed > 0.0 ? static_cast<double>(done) / elapsed : 0.0;
    char line[128];
    std::snprintf(line, sizeof line, "\r%3d%%  %.3g M samples/s  %s left \033[K",
                  static_cast<int>(100.0 * static_cast<double>(done) / static_cast<double>(m_total)),
                  rate / 1e6,
                  rate > 0.0 ? clockText(static_cast<double>(m_total - done) / rate).c_str() : "?:??");
    writeErr(line);
    m_shown = true;
}

void ProgressLine::clear()
{
    if (m_shown) {
        writeErr("\r\033[K");
        m_shown = false;
    }
}

} // namespace zelvar_sim
