#include "sim_frequency_plot.h"

#include "sim_file_error.h"
#include "sim_frequency_table.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

extern char** environ;

namespace zelvar_sim {
namespace {

// A gnuplot string in single quotes, where only the quote itself is special.
std::string quoted(const std::string& text)
{
    std::string result = "'";
    for (char c : text) {
        result += c;
        if (c == '\'') {
            result += '\'';
        }
    }
    return result + "'";
}

std::string lowerExtension(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

// A temporary file that goes away with its owner.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& stem)
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / (stem + "-XXXXXX")).string();
        const int descriptor = mkstemp(pattern.data());
        if (descriptor < 0) {
            throw FileError(pattern + ": cannot make a temporary file (" +
                            std::strerror(errno) + ")");
        }
        close(descriptor);
        m_path = pattern;
    }
    ~TemporaryFile() { std::remove(m_path.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

std::string firstLineOf(const std::string& path)
{
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        if (line.find_first_not_of(" \t\r^") != std::string::npos) {
            return line;
        }
    }
    return "no message";
}

} // namespace

std::string plotScript(const PlotRequest& request)
{
    const std::string extension = lowerExtension(request.path);
    std::ostringstream script;
    if (extension == ".png") {
        script << "set terminal pngcairo noenhanced size 1280,720\n";
    } else if (extension == ".svg") {
        script << "set terminal svg noenhanced size 1280,720 dynamic\n";
    } else {
        throw FileError(request.path + ": a plot is a .png or an .svg file");
    }
    script << "set output " << quoted(request.path) << '\n'
           << "set title " << quoted(request.title) << '\n'
           << "set xlabel 'time (s)'\nset ylabel 'frequency (Hz)'\n"
           << "set grid\nset key outside right top\nset offsets 0, 0, graph 0.05, graph 0.05\n";

    std::set<std::string> files;
    for (const FrequencySeries& one : request.series) {
        files.insert(one.file);
    }
    bool any_value = false;
    std::vector<bool> has_value(request.series.size(), false);
    double first_time = 0.0;
    double last_time = 0.0;
    bool any_time = false;
    for (std::size_t s = 0; s < request.series.size(); ++s) {
        const FrequencySeries& one = request.series[s];
        script << "$series" << s << " << EOD\n";
        bool after_break = true;
        one.forEachPoint([&](std::uint64_t index, double value) {
            const double time = one.timeOf(index);
            if (std::isfinite(time)) {
                first_time = any_time ? std::min(first_time, time) : time;
                last_time = any_time ? std::max(last_time, time) : time;
                any_time = true;
            }
            if (!std::isfinite(value)) {
                // One blank line ends the line drawn so far.
                if (!after_break) {
                    script << '\n';
                }
                after_break = true;
                return;
            }
            script << numberText(time) << ' ' << numberText(value) << '\n';
            after_break = false;
            any_value = true;
            has_value[s] = true;
        });
        script << "EOD\n";
    }
    if (any_time) {
        const double margin = first_time == last_time ? 0.5 : 0.0;
        script << "set xrange [" << numberText(first_time - margin) << ':'
               << numberText(last_time + margin) << "]\n";
    }
    if (!any_value) {
        // Nothing to scale to: an empty frame still says so in its key.
        script << "set yrange [0:1]\n";
    }
    if (request.series.empty()) {
        script << "set label 'no inputs' at graph 0.5, graph 0.5 center\n"
               << "plot NaN notitle\n";
        return script.str();
    }
    script << "plot";
    for (std::size_t s = 0; s < request.series.size(); ++s) {
        const FrequencySeries& one = request.series[s];
        const std::string name = files.size() > 1 ? one.file + ": " + one.channel : one.channel;
        script << (s == 0 ? " " : ", \\\n     ");
        if (!has_value[s]) {
            // gnuplot leaves a series without points out of the key; a person
            // looking for the input should see that it gave no frequency.
            script << "NaN with lines title " << quoted(name + " (no frequency)");
            continue;
        }
        script << "$series" << s
               << " using 1:2 with linespoints pointtype 7 pointsize 0.4 title " << quoted(name);
    }
    script << '\n';
    return script.str();
}

void plotFrequencies(const PlotRequest& request)
{
    const std::string script = plotScript(request);
    TemporaryFile script_file("zelvar-plot");
    TemporaryFile messages("zelvar-plot-messages");
    {
        std::ofstream out(script_file.path(), std::ios::binary);
        out << script;
        if (!out.flush()) {
            throw FileError(script_file.path() + ": cannot write the plot's script");
        }
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, messages.path().c_str(),
                                     O_WRONLY | O_TRUNC, 0);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    std::string program = request.gnuplot;
    std::string script_path = script_file.path();
    char* arguments[] = {program.data(), script_path.data(), nullptr};
    pid_t child = 0;
    const int spawned =
        posix_spawnp(&child, program.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned == ENOENT) {
        throw FileError(request.path + ": no plot, " + request.gnuplot +
                        " is not installed (Debian package gnuplot-nox)");
    }
    if (spawned != 0) {
        throw FileError(request.path + ": no plot, " + request.gnuplot + " did not start (" +
                        std::strerror(spawned) + ")");
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            throw FileError(request.path + ": no plot, lost " + request.gnuplot + " (" +
                            std::strerror(errno) + ")");
        }
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw FileError(request.path + ": no plot, " + request.gnuplot + " said: " +
                        firstLineOf(messages.path()));
    }
    std::error_code error;
    if (std::filesystem::file_size(request.path, error) == 0 || error) {
        throw FileError(request.path + ": no plot, " + request.gnuplot + " wrote nothing");
    }
}

} // namespace zelvar_sim
