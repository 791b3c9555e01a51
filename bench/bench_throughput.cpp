// The throughput of `zelvar-sim run` on a recording, against the same
// pipeline in vectorised numpy (bench/numpy_frequency.py) on the same file in
// the same run. The recordings are 16-bit 48 kHz stereo WAV files of a tone
// that glides slowly, with noise; they are made once and kept under the
// build tree. Each case runs the built program as a child process:
//
//   zelvar-sim run FILE -o /dev/null -q
//
// with one core (OMP_NUM_THREADS=1 and an affinity of one CPU), with all
// cores at the command's default (one thread a transform, the channels
// split over as many sessions as there are processors), and, for the
// minute, with all cores and --threads 2; it reports its wall time, its processor time, input samples per
// second, the real-time factor, the ratio to numpy and the peak resident
// memory that wait4 gives. Before the cases run, both programs measure the
// one-minute file once and their values are compared, so that the peer is
// known to do the same work. Figures in bench/README.md.
#include <benchmark/benchmark.h>

#include <sndfile.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int RATE = 48000;
constexpr int CHANNELS = 2;

std::string recordingPath(long seconds)
{
    return std::string(BENCH_DATA_DIR) + "/tone_48k_stereo_" + std::to_string(seconds) + "s.wav";
}

// A tone that glides from 1 kHz to 1.2 kHz over the whole recording (the
// second channel at 1.5 times its frequency) with noise well below it:
// every window has one clear peak that moves a little from window to window.
void writeTone(const std::string& path, long seconds)
{
    const std::string partial = path + ".partial";
    SF_INFO info{};
    info.samplerate = RATE;
    info.channels = CHANNELS;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open(partial.c_str(), SFM_WRITE, &info);
    if (!file) {
        throw std::runtime_error(partial + ": " + sf_strerror(nullptr));
    }
    const std::int64_t frames = std::int64_t{seconds} * RATE;
    std::vector<short> chunk(static_cast<std::size_t>(RATE) * CHANNELS);
    std::uint64_t noise_state = 0x9E3779B97F4A7C15u;
    const auto noise = [&noise_state] {
        // Sum of four uniforms from xorshift64: near Gaussian, deterministic.
        double sum = 0.0;
        for (int i = 0; i < 4; ++i) {
            noise_state ^= noise_state << 13;
            noise_state ^= noise_state >> 7;
            noise_state ^= noise_state << 17;
            sum += static_cast<double>(noise_state >> 11) * 0x1.0p-53;
        }
        return sum - 2.0;
    };
    double phase = 0.0;
    for (std::int64_t first = 0; first < frames; first += RATE) {
        const std::int64_t count = std::min<std::int64_t>(RATE, frames - first);
        for (std::int64_t i = 0; i < count; ++i) {
            const double t = static_cast<double>(first + i) / RATE;
            const double frequency = 1000.0 + 200.0 * t / static_cast<double>(seconds);
            phase = std::fmod(phase + 2.0 * M_PI * frequency / RATE, 2.0 * M_PI);
            chunk[static_cast<std::size_t>(2 * i)] =
                static_cast<short>(std::lround(8000.0 * std::sin(phase) + 800.0 * noise()));
            chunk[static_cast<std::size_t>(2 * i + 1)] =
                static_cast<short>(std::lround(6000.0 * std::sin(1.5 * phase) + 800.0 * noise()));
        }
        if (sf_writef_short(file, chunk.data(), count) != count) {
            sf_close(file);
            throw std::runtime_error(partial + ": writing failed");
        }
    }
    sf_close(file);
    std::filesystem::rename(partial, path);
}

// The recording of `seconds`, made on first use and kept.
const std::string& recording(long seconds)
{
    static std::map<long, std::string> made;
    auto found = made.find(seconds);
    if (found == made.end()) {
        const std::string path = recordingPath(seconds);
        const auto expected = static_cast<std::uintmax_t>(44 + seconds * RATE * CHANNELS * 2);
        std::filesystem::create_directories(BENCH_DATA_DIR);
        if (!std::filesystem::exists(path) || std::filesystem::file_size(path) != expected) {
            std::cerr << "bench_throughput: writing " << path << "\n";
            writeTone(path, seconds);
        }
        found = made.emplace(seconds, path).first;
    }
    return found->second;
}

struct ChildRun {
    double wall_seconds = 0.0;
    double cpu_seconds = 0.0; // user and system
    double peak_rss_mib = 0.0;
    int status = 0;
};

// Runs `argv` to its end with standard output sent to `output`; with
// `one_core` it gets one CPU of this process's affinity and one OpenMP thread.
ChildRun runChild(const std::vector<std::string>& argv, bool one_core,
                  const std::string& output = "/dev/null")
{
    const auto start = std::chrono::steady_clock::now();
    const pid_t pid = fork();
    if (pid < 0) {
        throw std::runtime_error("fork failed");
    }
    if (pid == 0) {
        if (one_core) {
            cpu_set_t allowed;
            CPU_ZERO(&allowed);
            sched_getaffinity(0, sizeof allowed, &allowed);
            for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
                if (CPU_ISSET(cpu, &allowed)) {
                    cpu_set_t one;
                    CPU_ZERO(&one);
                    CPU_SET(cpu, &one);
                    sched_setaffinity(0, sizeof one, &one);
                    break;
                }
            }
            setenv("OMP_NUM_THREADS", "1", 1);
        }
        const int out = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (out >= 0) {
            dup2(out, STDOUT_FILENO);
            close(out);
        }
        std::vector<char*> args;
        for (const std::string& arg : argv) {
            args.push_back(const_cast<char*>(arg.c_str()));
        }
        args.push_back(nullptr);
        execv(args[0], args.data());
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(pid, &status, 0, &usage);
    ChildRun run;
    run.wall_seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const auto seconds = [](const timeval& t) { return t.tv_sec + t.tv_usec * 1e-6; };
    run.cpu_seconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    run.peak_rss_mib = static_cast<double>(usage.ru_maxrss) / 1024.0;
    run.status = status;
    return run;
}

std::vector<std::string> oursArgs(const std::string& file, const std::string& output,
                                  int threads = 0)
{
    std::vector<std::string> args{ZELVAR_SIM, "run", file, "-o", output, "-q"};
    if (threads > 0) {
        args.insert(args.end(), {"--threads", std::to_string(threads)});
    }
    return args;
}

std::vector<std::string> numpyArgs(const std::string& file, const std::string& output = "")
{
    std::vector<std::string> args{"/usr/bin/python3", NUMPY_FREQUENCY, file};
    if (!output.empty()) {
        args.insert(args.end(), {"-o", output});
    }
    return args;
}

// numpy's wall and processor seconds per recording, for the ratio.
std::map<long, std::vector<ChildRun>>& numpyRuns()
{
    static std::map<long, std::vector<ChildRun>> runs;
    return runs;
}

double median(std::vector<double> values)
{
    if (values.empty()) {
        return 0.0;
    }
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : 0.5 * (values[middle - 1] + values[middle]);
}

void report(benchmark::State& state, long seconds, const ChildRun& run, int cores)
{
    if (run.status != 0) {
        state.SkipWithError(("the child ended with status " + std::to_string(run.status)).c_str());
        return;
    }
    state.SetIterationTime(run.wall_seconds);
    const double samples = static_cast<double>(seconds) * RATE * CHANNELS;
    state.counters["cpu_s"] = run.cpu_seconds;
    state.counters["samples_per_s"] = samples / run.wall_seconds;
    state.counters["realtime"] = static_cast<double>(seconds) / run.wall_seconds;
    // One channel's real-time factor for each core the run kept busy: the
    // figure that a loaded machine disturbs least.
    state.counters["rt_per_core_ch"] = static_cast<double>(seconds) * CHANNELS / run.cpu_seconds;
    state.counters["peak_rss_MiB"] = run.peak_rss_mib;
    state.counters["cores"] = cores;
}

void BM_Numpy(benchmark::State& state)
{
    const long seconds = state.range(0);
    const std::string& file = recording(seconds);
    for (auto _ : state) {
        const ChildRun run = runChild(numpyArgs(file), false);
        numpyRuns()[seconds].push_back(run);
        report(state, seconds, run, 1);
    }
}

// Arguments: seconds of recording, cores (1: one core; 0: all of them with
// the command's default of one thread a transform; 2: all of them with
// --threads 2, the engine's own team).
void BM_ZelvarSimRun(benchmark::State& state)
{
    const long seconds = state.range(0);
    const bool one_core = state.range(1) == 1;
    const int threads = state.range(1) == 2 ? 2 : 0;
    const std::string& file = recording(seconds);
    for (auto _ : state) {
        const ChildRun run = runChild(oursArgs(file, "/dev/null", threads), one_core);
        report(state, seconds, run, one_core ? 1 : static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN)));
        std::vector<double> walls;
        std::vector<double> cpus;
        for (const ChildRun& peer : numpyRuns()[seconds]) {
            walls.push_back(peer.wall_seconds);
            cpus.push_back(peer.cpu_seconds);
        }
        if (!walls.empty() && run.status == 0) {
            state.counters["x_numpy"] = median(walls) / run.wall_seconds;
            state.counters["x_numpy_cpu"] = median(cpus) / run.cpu_seconds;
        }
    }
}

// (channel, index) -> frequency text, channels numbered by first appearance.
std::map<std::pair<int, long>, double> readTable(const std::string& path)
{
    std::map<std::pair<int, long>, double> values;
    std::map<std::string, int> channels;
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string channel, index, time, frequency;
        std::getline(fields, channel, ',');
        std::getline(fields, index, ',');
        std::getline(fields, time, ',');
        std::getline(fields, frequency, ',');
        const int number = channels.emplace(channel, static_cast<int>(channels.size())).first->second;
        values[{number, std::stol(index)}] = std::strtod(frequency.c_str(), nullptr);
    }
    return values;
}

// Both programs over the one-minute file: the same number of values, and
// the first windows of each channel the same to far below a millihertz
// (the transforms round differently).
bool peersAgree()
{
    const std::string& file = recording(60);
    const std::string ours = std::string(BENCH_DATA_DIR) + "/agreement_ours.csv";
    const std::string theirs = std::string(BENCH_DATA_DIR) + "/agreement_numpy.csv";
    if (runChild(oursArgs(file, ours), true).status != 0 ||
        runChild(numpyArgs(file, theirs), false).status != 0) {
        std::cerr << "bench_throughput: a program failed on " << file << "\n";
        return false;
    }
    const auto a = readTable(ours);
    const auto b = readTable(theirs);
    if (a.size() != b.size() || a.empty()) {
        std::cerr << "bench_throughput: " << a.size() << " values against numpy's " << b.size()
                  << "\n";
        return false;
    }
    double worst = 0.0;
    int compared = 0;
    for (const auto& [key, value] : a) {
        if (key.second > 8) {
            continue;
        }
        const auto other = b.find(key);
        if (other == b.end()) {
            return false;
        }
        worst = std::max(worst, std::fabs(value - other->second));
        ++compared;
    }
    std::cerr << "bench_throughput: ours and numpy agree on " << a.size() << " values; the first "
              << compared << " differ by at most " << worst << " Hz\n";
    return worst < 1e-6;
}

} // namespace

BENCHMARK(BM_Numpy)->Arg(60)->Arg(3600)->ArgNames({"seconds"})->Iterations(1)->UseManualTime()
    ->Unit(benchmark::kSecond);
BENCHMARK(BM_ZelvarSimRun)
    ->Args({60, 1})->Args({60, 0})->Args({60, 2})->Args({3600, 1})->Args({3600, 0})
    ->ArgNames({"seconds", "cores"})->Iterations(1)->UseManualTime()->Unit(benchmark::kSecond);

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    if (!peersAgree()) {
        std::cerr << "bench_throughput: numpy and zelvar-sim do not agree; no figures\n";
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
