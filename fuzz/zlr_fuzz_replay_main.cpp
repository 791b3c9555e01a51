// Runs one fuzz target on one seed file, built with the ordinary compiler so
// that the targets' checks run in every build:
//   fuzz_seed_replay <target> <seed file>
// A seed whose file name begins with "written" is in the writer's own form.
#include "zlr_fuzz_harness.h"
#include "zlr_fuzz_replay.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <target> <seed file>\n", argv[0]);
        return 2;
    }
    std::ifstream file(argv[2], std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "cannot read %s\n", argv[2]);
        return 2;
    }
    const std::string seed((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const std::string path = argv[2];
    const std::string file_name = path.substr(path.find_last_of('/') + 1);
    for (const auto& target : zlr::fuzz::REPLAY_TARGETS) {
        if (std::strcmp(target.name, argv[1]) == 0) {
            const bool written_form = file_name.rfind("written", 0) == 0;
            zlr::fuzz::setInputInWrittenForm(written_form);
            target.entry(reinterpret_cast<const std::uint8_t*>(seed.data()), seed.size());
            zlr::fuzz::expect(!written_form || zlr::fuzz::writtenFormChecked(),
                              "a text in written form is read and written back");
            return 0;
        }
    }
    std::fprintf(stderr, "no fuzz target %s\n", argv[1]);
    return 2;
}
