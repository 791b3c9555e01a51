#include "sim_run_command.h"

#include "sim_demo_recording.h"
#include "sim_double_recording.h"
#include "sim_file_error.h"
#include "sim_frequency_plot.h"
#include "sim_frequency_run.h"
#include "sim_frequency_series.h"
#include "sim_frequency_table.h"
#include "sim_message_trace.h"
#include "sim_run_jobs.h"
#include "sim_run_progress.h"
#include "sim_session_outcome.h"
#include "sim_recording_file.h"
#include "sim_run_printing.h"

#include <omp.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <iostream>
#include <stdexcept>

namespace zelvar_sim {
namespace {

const char* const BUILT_IN = "(built-in)";

// The inputs of one host session, and the reader whose faults end it.
struct Session {
    std::string file;
    std::vector<DemoInput> inputs;
    std::shared_ptr<const SharedFrameReader> reader;
    double duration = 0.0;           // s, of the longest input
    double samples_per_second = 0.0; // of all inputs together
    std::vector<std::size_t> file_channels{}; // each input's channel in the file
    // A part of a file whose other parts run in other children at the same
    // time: it reads through a reader of its own, as the file offset of the
    // one opened before the fork is shared with them.
    bool shares_file = false;
};

void measure(Session& session)
{
    for (const DemoInput& input : session.inputs) {
        session.samples_per_second += input.sample_rate;
        session.duration = std::max(session.duration, static_cast<double>(input.recording->length()) /
                                                          input.sample_rate);
    }
}

// A run that the plug-in would not do as configured.
struct Refused {
    std::string text;
};

bool isIndex(const std::string& text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return std::isdigit(c) != 0;
    });
}

// The inputs a person picked, by name first, then by position.
template <typename Input>
std::vector<Input> pickedInputs(const std::string& where, const std::vector<Input>& inputs,
                                const std::vector<std::string>& wanted)
{
    if (wanted.empty()) {
        return inputs;
    }
    std::vector<Input> picked;
    for (const std::string& name : wanted) {
        const auto by_name = std::find_if(inputs.begin(), inputs.end(),
                                          [&](const Input& input) { return input.long_name == name; });
        if (by_name != inputs.end()) {
            picked.push_back(*by_name);
        } else if (isIndex(name) && name.size() < 10 && std::stoul(name) < inputs.size()) {
            picked.push_back(inputs[std::stoul(name)]);
        } else {
            throw FileError(where + ": no channel \"" + name + "\" (it has " +
                            std::to_string(inputs.size()) + ")");
        }
    }
    return picked;
}

std::vector<Session> openSessions(const RunCommandOptions& options)
{
    if (options.sample_rate) {
        checkSampleRate("--sample-rate", *options.sample_rate);
    }
    std::vector<Session> sessions;
    if (options.inputs.empty()) {
        Session session{BUILT_IN, pickedInputs(BUILT_IN, demoInputs(), options.channels), nullptr};
        for (DemoInput& input : session.inputs) {
            input.sample_rate = options.sample_rate.value_or(input.sample_rate);
        }
        measure(session);
        sessions.push_back(std::move(session));
        return sessions;
    }
    std::vector<RecordingFile> files;
    std::vector<std::vector<std::size_t>> channels_of_files;
    for (const std::string& path : options.inputs) {
        RecordingFile file = openRecordingFile(path, options.sample_rate);
        file.sample_rate = options.sample_rate.value_or(file.sample_rate);
        const std::vector<FileInput> all = std::move(file.inputs);
        file.inputs = pickedInputs(path, all, options.channels);
        if (file.inputs.empty()) {
            throw FileError(path + ": no channels to run on");
        }
        std::vector<std::size_t>& channels = channels_of_files.emplace_back();
        for (const FileInput& picked : file.inputs) {
            channels.push_back(static_cast<std::size_t>(
                std::find_if(all.begin(), all.end(),
                             [&](const FileInput& one) { return one.recording == picked.recording; }) -
                all.begin()));
        }
        files.push_back(std::move(file));
    }
    makeLongNamesUnique(files);
    for (std::size_t f = 0; f < files.size(); ++f) {
        const RecordingFile& file = files[f];
        Session session{file.path, {}, file.reader};
        session.file_channels = channels_of_files[f];
        for (const FileInput& input : file.inputs) {
            session.inputs.push_back(
                {input.long_name, file.sample_rate, asDoubles(input.recording), file.format});
        }
        measure(session);
        sessions.push_back(std::move(session));
    }
    return sessions;
}

// Whether the run's output is the same when a file's channels run in host
// sessions of their own. The readable table shows the session (its input
// ids, one column per output), a trace is one session's conversation and a
// saved record holds the channel with all its inputs, so those keep the
// session whole.
bool channelsMayRunApart(const RunCommandOptions& options)
{
    const bool readable_table = options.output.empty() && !options.quiet;
    return !readable_table && options.trace.empty() && options.save_config.empty() &&
           options.load_config.empty();
}

// A channel's settings follow from the window and the sample rate alone, and
// its values from its own samples, as long as every input of the channel has
// the same rate; an input picked twice shares one output and stays whole.
bool inputsAreIndependent(const Session& session)
{
    std::set<std::string> names;
    for (const DemoInput& input : session.inputs) {
        if (input.sample_rate != session.inputs.front().sample_rate ||
            !names.insert(input.long_name).second) {
            return false;
        }
    }
    return true;
}

// With fewer files than jobs, each file's channels go to host sessions of
// their own, in groups of neighbours, so that the sessions' series joined
// in order are those of the whole file.
std::vector<Session> splitChannels(std::vector<Session> sessions, unsigned jobs)
{
    if (jobs <= sessions.size()) {
        return sessions;
    }
    const std::size_t parts_per_file = jobs / sessions.size();
    std::vector<Session> split;
    for (Session& session : sessions) {
        const std::size_t count = session.inputs.size();
        const std::size_t parts = std::min(count, parts_per_file);
        if (parts < 2 || !inputsAreIndependent(session)) {
            split.push_back(std::move(session));
            continue;
        }
        for (std::size_t part = 0; part < parts; ++part) {
            const auto first = static_cast<std::ptrdiff_t>(part * count / parts);
            const auto last = static_cast<std::ptrdiff_t>((part + 1) * count / parts);
            Session one{session.file, {}, session.reader};
            one.inputs.assign(session.inputs.begin() + first, session.inputs.begin() + last);
            if (session.reader) {
                one.file_channels.assign(session.file_channels.begin() + first,
                                         session.file_channels.begin() + last);
                one.shares_file = true;
            }
            measure(one);
            split.push_back(std::move(one));
        }
    }
    return split;
}

// Throws FileError when the file no longer opens as it did.
void readThroughOwnReader(Session& part, const RunCommandOptions& options)
{
    const RecordingFile file = openRecordingFile(part.file, options.sample_rate);
    part.reader = file.reader;
    for (std::size_t k = 0; k < part.inputs.size(); ++k) {
        if (part.file_channels[k] >= file.inputs.size()) {
            throw FileError(part.file + ": changed during the run");
        }
        part.inputs[k].recording = asDoubles(file.inputs[part.file_channels[k]].recording);
    }
}

std::vector<SettingEdit> settingEdits(const RunCommandOptions& options)
{
    const std::pair<const char*, const std::optional<double>&> edits[] = {
        {"FREQUENCY_MEASUREMENT/WindowLength", options.window_length},
        {"FREQUENCY_MEASUREMENT/WindowOverlap", options.overlap},
        {"FREQUENCY_MEASUREMENT/MinFrequency", options.min_frequency},
        {"FREQUENCY_MEASUREMENT/MaxFrequency", options.max_frequency},
    };
    std::vector<SettingEdit> result;
    for (const auto& [key, value] : edits) {
        if (value) {
            result.push_back({key, numberText(*value)});
        }
    }
    return result;
}

// Throws Refused when the plug-in did not take the configuration.
void checkAccepted(const FrequencyRunResult& result)
{
    for (const ShownSetting& setting : result.settings) {
        if (setting.key == "FREQUENCY_MEASUREMENT/StatusText" && !setting.value.empty()) {
            throw Refused{setting.value};
        }
    }
    if (!result.refused_edits.empty()) {
        throw Refused{"setting not taken: " + result.refused_edits.front()};
    }
    for (const RunOutput& output : result.outputs) {
        if (!output.valid) {
            throw Refused{"output channel " + output.name + " is not valid"};
        }
    }
    if (!result.faults.empty()) {
        throw Refused{"the plug-in broke the host's protocol: " + result.faults.front().reason};
    }
}

// The outputs' blocks move into the series: an hour's values are held once.
std::vector<FrequencySeries> seriesOf(const Session& session, FrequencyRunResult& result)
{
    std::vector<FrequencySeries> series;
    std::vector<std::size_t> taken; // the output of each series so far
    for (const DemoInput& input : session.inputs) {
        const auto output = std::find_if(result.outputs.begin(), result.outputs.end(),
                                         [&](const RunOutput& out) {
                                             return out.name == input.long_name + "_Frequency";
                                         });
        if (output == result.outputs.end() || output->rate <= 0.0) {
            throw Refused{"no output channel for " + input.long_name};
        }
        // An input picked twice names one output twice: the second takes a copy.
        const std::size_t at = static_cast<std::size_t>(output - result.outputs.begin());
        const auto earlier = std::find(taken.begin(), taken.end(), at);
        std::vector<CapturedBlock> blocks =
            earlier == taken.end() ? std::move(output->blocks)
                                   : series[static_cast<std::size_t>(earlier - taken.begin())].blocks;
        taken.push_back(at);
        series.push_back({session.file, input.long_name, input.sample_rate,
                          windowStepOf(input.sample_rate, output->rate), std::move(blocks)});
    }
    return series;
}

// The table goes to a file beside the target first, so that a failed run
// leaves the target as it was.
void writeTableWhole(const std::string& path, const std::vector<FrequencySeries>& series)
{
    const std::filesystem::path target(path);
    std::filesystem::path partial = target;
    partial.replace_filename("." + target.filename().string() + ".part" + std::to_string(getpid()));
    try {
        writeFrequencyTable(partial.string(), series);
        std::filesystem::rename(partial, target);
    } catch (const std::filesystem::filesystem_error& error) {
        std::error_code ignored;
        std::filesystem::remove(partial, ignored);
        throw FileError(path + ": cannot be written (" + error.code().message() + ")");
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove(partial, ignored);
        throw;
    }
}

std::string plotTitle(const RunCommandOptions& options, const FrequencyRunResult& result)
{
    std::string title;
    for (const ShownSetting& setting : result.settings) {
        if (setting.key != "FREQUENCY_MEASUREMENT/InputChannels" &&
            setting.key != "FREQUENCY_MEASUREMENT/StatusText") {
            title += (title.empty() ? "" : ", ") + setting.label + " " + setting.value;
        }
    }
    return (options.inputs.size() == 1 ? options.inputs.front() + ": " : std::string()) + title;
}

MessageObserver traceObserver(std::ostream* trace, const std::string& file)
{
    if (!trace) {
        return {};
    }
    *trace << "# " << file << "\n";
    auto writer = std::make_shared<MessageTrace>(*trace);
    return [writer](const ObservedMessage& message) { writer->observe(message); };
}

SessionOutcome failedSession(int status, std::string error)
{
    SessionOutcome outcome;
    outcome.status = status;
    outcome.error = std::move(error);
    return outcome;
}

// One file in a host session of its own; a failure becomes the outcome's
// status and line instead of an exception, so that a child can hand it on.
SessionOutcome runSession(PluginLibrary& library, const RunCommandOptions& options,
                          const Session& session, const std::optional<SavedSettings>& loaded,
                          MessageObserver observer)
{
    SessionOutcome outcome;
    try {
        FrequencyRunRequest request;
        request.inputs = session.inputs;
        request.edits = settingEdits(options);
        request.run.block_duration = options.block_duration;
        request.run.mode = ProcessMode::time_stamped;
        request.restore = loaded;
        request.observer = std::move(observer);
        FrequencyRunResult result = runFrequencyMeasurement(library, request);
        if (session.reader && !session.reader->fault().empty()) {
            throw FileError(session.reader->fault());
        }
        checkAccepted(result);
        if (options.output.empty() && !options.quiet) {
            std::ostringstream printed;
            printed << "file: " << session.file << "\n";
            printFrequencyRun(printed, request, result);
            outcome.printed = printed.str();
        }
        outcome.title = plotTitle(options, result);
        outcome.saved_configuration = result.saved_configuration;
        outcome.series = seriesOf(session, result);
    } catch (const FileError& error) {
        outcome = failedSession(2, error.what());
    } catch (const std::invalid_argument& error) {
        outcome = failedSession(2, error.what());
    } catch (const Refused& refused) {
        outcome = failedSession(3, refused.text);
    } catch (const std::exception& error) {
        outcome = failedSession(3, error.what());
    }
    return outcome;
}

// What all sessions gave, in their order: the printed parts, the table, the
// plot, the saved settings of the first, the summaries.
void finishRun(const RunCommandOptions& options, std::vector<SessionOutcome>& outcomes,
               std::ostream& out)
{
    std::vector<FrequencySeries> series;
    for (SessionOutcome& outcome : outcomes) {
        out << outcome.printed;
        std::move(outcome.series.begin(), outcome.series.end(), std::back_inserter(series));
        outcome.series.clear();
    }
    if (options.output == "-") {
        writeFrequencyTable(out, series);
    } else if (!options.output.empty()) {
        writeTableWhole(options.output, series);
    }
    if (!options.plot.empty()) {
        plotFrequencies({options.plot, outcomes.back().title, series});
    }
    if (!options.save_config.empty()) {
        writeSavedSettings(options.save_config, outcomes.front().saved_configuration);
    }
    if (!options.quiet && options.output != "-") {
        std::vector<FrequencySummary> summaries;
        for (const FrequencySeries& one : series) {
            summaries.push_back(summarise(one));
        }
        printSummaries(out, summaries);
    }
}

// The transforms' thread count for the length of a run; the caller's
// comes back after it.
class TransformThreads {
public:
    explicit TransformThreads(unsigned threads) : m_before(omp_get_max_threads())
    {
        omp_set_num_threads(static_cast<int>(threads));
    }
    ~TransformThreads() { omp_set_num_threads(m_before); }
    TransformThreads(const TransformThreads&) = delete;
    TransformThreads& operator=(const TransformThreads&) = delete;

private:
    int m_before;
};

} // namespace

CLI::App* addRunCommand(CLI::App& app, RunCommandOptions& options, std::string& plugin_path)
{
    CLI::App* run = app.add_subcommand(
        "run", "run a \"Frequency Measurement\" channel over recordings, one host session per file");
    run->add_option("INPUT", options.inputs,
                    "recordings: any format libsndfile reads (WAV, FLAC, AIFF, ...), or CSV (.csv, "
                    ".txt) with --sample-rate (default: the built-in recording)")
        ->type_name("FILE");
    run->add_option("--window-length", options.window_length,
                    "window duration in s, 0.01 to 1 (default: the plug-in's 0.2 s)")
        ->type_name("S");
    run->add_option("--overlap", options.overlap,
                    "window overlap in %, 0 to 90 (default: the plug-in's 50 %)")
        ->type_name("PERCENT");
    run->add_option("--min-frequency", options.min_frequency,
                    "lowest frequency published, in Hz (default: 5 / window length)")
        ->type_name("HZ");
    run->add_option("--max-frequency", options.max_frequency,
                    "highest frequency searched and published, in Hz (default: half the sample rate)")
        ->type_name("HZ");
    run->add_option("--channels", options.channels,
                    "input columns or file channels, by name or 0-based index, comma-separated "
                    "(default: all)")
        ->delimiter(',')
        ->type_name("LIST");
    run->add_option("--sample-rate", options.sample_rate,
                    "sample rate in Hz; required for CSV, overrides a file's own (default: the file's)")
        ->type_name("HZ");
    run->add_option("--block-duration", options.block_duration,
                    "seconds of data per block the host hands out, 0.0001 to 3600")
        ->check(CLI::Range(0.0001, 3600.0).description(""))
        ->type_name("S")
        ->capture_default_str();
    run->add_option("-o,--output", options.output,
                    "write the CSV table to FILE, '-' for standard output (default: a readable "
                    "table and a summary per input)")
        ->type_name("FILE");
    run->add_option("--plot", options.plot,
                    "draw the frequencies with gnuplot into FILE.png or FILE.svg (default: no plot)")
        ->type_name("FILE");
    run->add_option("--trace", options.trace,
                    "write every message between host and plug-in to FILE, one a line: direction, "
                    "name and number, key, answer, value (default: no trace)")
        ->type_name("FILE");
    run->add_option("--save-config", options.save_config,
                    "after the run, write the channel's settings as the host saves them to FILE; "
                    "with several INPUT files those of the first (default: not saved)")
        ->type_name("FILE");
    run->add_option("--load-config", options.load_config,
                    "before the run, restore the channel from a FILE written by --save-config, its "
                    "inputs mapped onto this run's in order; the setting options apply after it "
                    "(default: a new channel)")
        ->type_name("FILE");
    run->add_option("-j,--jobs", options.jobs,
                    "run this many host sessions side by side in child processes: one per INPUT "
                    "file, and with fewer files than jobs a file's channels split over them when "
                    "the table goes to --output or with --quiet, without --trace, --save-config or "
                    "--load-config; the output is the same as with --jobs 1 (default: the number "
                    "of processors)")
        ->type_name("N")
        ->capture_default_str();
    run->add_option("--threads", options.threads,
                    "OpenMP threads each transform may use; more pay only for windows of "
                    "hundreds of thousands of points on an otherwise idle machine (default: 1, "
                    "so that the run never waits on a busy processor)")
        ->check(CLI::Range(1u, 1024u).description(""))
        ->type_name("N")
        ->capture_default_str();
    run->add_flag("-q,--quiet", options.quiet,
                  "print nothing but errors, and no progress line (default: a progress line on a "
                  "terminal)");
    run->add_option("--plugin", plugin_path, "the .plugin file to load")
        ->type_name("PATH")
        ->capture_default_str();
    return run;
}

int runRunCommand(PluginLibrary& library, const RunCommandOptions& options, std::ostream& out,
                  std::ostream& err)
{
    try {
        std::optional<SavedSettings> loaded;
        if (!options.load_config.empty()) {
            loaded = readSavedSettings(options.load_config);
        }
        if (options.jobs == 0) {
            throw FileError("--jobs: at least 1");
        }
        std::vector<Session> sessions = openSessions(options);
        if (channelsMayRunApart(options)) {
            sessions = splitChannels(std::move(sessions), options.jobs);
        }
        const TransformThreads threads(options.threads);
        std::ofstream trace_file;
        if (!options.trace.empty()) {
            trace_file.open(options.trace);
            if (!trace_file) {
                throw FileError(options.trace + ": cannot be written");
            }
        }

        ProgressBoard board(sessions.size());
        std::uint64_t total_samples = 0;
        for (const Session& session : sessions) {
            total_samples += static_cast<std::uint64_t>(session.duration * session.samples_per_second);
        }
        std::optional<ProgressLine> progress;
        if (!options.quiet && isatty(STDERR_FILENO)) {
            progress.emplace(board, total_samples);
        }
        // A child only counts; the parent draws the line for all of them.
        const auto runOne = [&](std::size_t k, std::ostream* trace, bool draws) {
            // Without a trace or a progress line the host has no observer, and
            // the plug-in's messages cost nothing beyond their answers.
            MessageObserver observer = traceObserver(trace, sessions[k].file);
            if (progress) {
                observer = [counted = board.observerFor(k, sessions[k].samples_per_second,
                                                        sessions[k].duration, std::move(observer)),
                            &progress, draws](const ObservedMessage& message) {
                    counted(message);
                    if (draws) {
                        progress->update();
                    }
                };
            }
            return runSession(library, options, sessions[k], loaded, observer);
        };

        std::vector<SessionOutcome> outcomes;
        if (options.jobs > 1 && sessions.size() > 1) {
            const ScratchFolder scratch;
            std::vector<std::string> names;
            for (const Session& session : sessions) {
                names.push_back(session.file);
            }
            outcomes = runInChildren(
                names, options.jobs, scratch,
                [&](std::size_t k) {
                    if (sessions[k].shares_file) {
                        try {
                            readThroughOwnReader(sessions[k], options);
                        } catch (const FileError& error) {
                            return failedSession(2, error.what());
                        }
                    }
                    std::ofstream part;
                    if (trace_file.is_open()) {
                        part.open(scratch.file("trace" + std::to_string(k)));
                    }
                    SessionOutcome outcome = runOne(k, part.is_open() ? &part : nullptr, false);
                    if (part.is_open() && !part.flush()) {
                        throw FileError(options.trace + ": cannot be written");
                    }
                    return outcome;
                },
                [&progress] {
                    if (progress) {
                        progress->update();
                    }
                });
            for (std::size_t k = 0; k < sessions.size() && trace_file.is_open(); ++k) {
                std::ifstream part(scratch.file("trace" + std::to_string(k)));
                if (part.peek() != std::char_traits<char>::eof()) {
                    trace_file << part.rdbuf();
                }
            }
        } else {
            for (std::size_t k = 0; k < sessions.size(); ++k) {
                outcomes.push_back(runOne(k, trace_file.is_open() ? &trace_file : nullptr, true));
                if (outcomes.back().status != 0) {
                    break;
                }
            }
        }
        if (progress) {
            progress->clear();
        }
        if (trace_file.is_open() && !trace_file.flush()) {
            throw FileError(options.trace + ": cannot be written");
        }
        for (const SessionOutcome& outcome : outcomes) {
            if (outcome.status != 0) {
                err << "zelvar-sim: " << outcome.error << "\n";
                return outcome.status;
            }
        }
        finishRun(options, outcomes, out);
        return 0;
    } catch (const FileError& error) {
        err << "zelvar-sim: " << error.what() << "\n";
        return 2;
    } catch (const std::invalid_argument& error) {
        err << "zelvar-sim: " << error.what() << "\n";
        return 2;
    }
}

} // namespace zelvar_sim
