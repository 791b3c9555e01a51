// What every fuzz target of a telegram reader shares.
//
// A reader gets the input as a zero-terminated text with its length, as the
// host hands telegrams over. It may answer anything and may throw only the
// kit's number-text exceptions ("invalid stod argument", "stoll argument out
// of range", ...); any other exception, a crash or a failed expectation is a
// finding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace zlr::fuzz {

// Logging as in a host that records everything: each message is formatted,
// then dropped. Done once per process.
void prepareLogging();

// Aborts with `what` on stderr when `condition` is false, so that libFuzzer
// keeps the input.
void expect(bool condition, const char* what);

// True for the exceptions that number texts raise out of a reader.
bool isNumberTextError(const std::exception& error);

using TextReader = std::function<void(const char* text, std::size_t length)>;

// Runs `read` over the input; aborts on any exception but a number-text one.
void runReader(const std::uint8_t* data, std::size_t size, const TextReader& read);

// Set by the seed replay for a seed that is written exactly as the writer
// writes it: the first text written from what was read must then be the
// input itself, so that nothing is lost or changed on the way.
void setInputInWrittenForm(bool written_form);
void expectWrittenForm(const std::string& written);
// Whether expectWrittenForm ran since the input was set: a text in written
// form that its reader refuses never gets there.
bool writtenFormChecked();

} // namespace zlr::fuzz

// The seed replay links all targets into one program and names each entry
// point after its target.
#ifndef ZLR_FUZZ_ENTRY
#define ZLR_FUZZ_ENTRY LLVMFuzzerTestOneInput
#endif

// The libFuzzer entry point of a target whose reader is `reader`.
#define ZLR_FUZZ_READER(reader)                                                  \
    extern "C" int ZLR_FUZZ_ENTRY(const std::uint8_t* data, std::size_t size)    \
    {                                                                            \
        zlr::fuzz::runReader(data, size, &(reader));                             \
        return 0;                                                                \
    }
