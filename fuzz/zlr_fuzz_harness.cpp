#include "zlr_fuzz_harness.h"

#include <boost/log/core/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/make_shared.hpp>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace zlr::fuzz {
namespace {

class DroppingBackend
    : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding> {
public:
    void consume(const boost::log::record_view&) {}
};

bool startsWith(const std::string& text, const char* prefix)
{
    return text.rfind(prefix, 0) == 0;
}

std::string& currentInput()
{
    static std::string input;
    return input;
}

bool& inputInWrittenForm()
{
    static bool written_form = false;
    return written_form;
}

bool& writtenFormSeen()
{
    static bool seen = false;
    return seen;
}

bool endsWith(const std::string& text, const std::string& suffix)
{
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

} // namespace

void prepareLogging()
{
    static const bool prepared = [] {
        // Without any sink Boost.Log would print every record to the console.
        using Sink = boost::log::sinks::synchronous_sink<DroppingBackend>;
        boost::log::core::get()->add_sink(boost::make_shared<Sink>());
        return true;
    }();
    (void)prepared;
}

void expect(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "fuzz expectation failed: %s\n", what);
        std::abort();
    }
}

bool isNumberTextError(const std::exception& error)
{
    const std::string text = error.what();
    const bool known_name = text.find("sto") != std::string::npos;
    if (dynamic_cast<const std::invalid_argument*>(&error)) {
        return known_name && startsWith(text, "invalid sto") && endsWith(text, " argument");
    }
    if (dynamic_cast<const std::out_of_range*>(&error)) {
        return known_name && startsWith(text, "sto") && endsWith(text, " argument out of range");
    }
    return false;
}

void runReader(const std::uint8_t* data, std::size_t size, const TextReader& read)
{
    prepareLogging();
    currentInput().assign(reinterpret_cast<const char*>(data), size);
    const std::string text = currentInput();
    try {
        read(text.c_str(), text.size());
    } catch (const std::exception& error) {
        if (!isNumberTextError(error)) {
            std::fprintf(stderr, "unexpected exception out of a reader: %s\n", error.what());
            std::abort();
        }
    }
}

void setInputInWrittenForm(bool written_form)
{
    inputInWrittenForm() = written_form;
    writtenFormSeen() = false;
}

bool writtenFormChecked()
{
    return writtenFormSeen();
}

void expectWrittenForm(const std::string& written)
{
    writtenFormSeen() = true;
    if (inputInWrittenForm() && written != currentInput()) {
        std::fprintf(stderr, "input:\n%s\nwritten:\n%s\n", currentInput().c_str(), written.c_str());
        expect(false, "a text in written form is written back unchanged");
    }
}

} // namespace zlr::fuzz
