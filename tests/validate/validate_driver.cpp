// The validate command alone, as zelvar-sim offers it, for the tests to run
// as a child process.
#include "sim_validate_command.h"

int main(int argc, char** argv)
{
    CLI::App app{"validate driver"};
    addValidateCommand(app);
    app.require_subcommand(1);
    CLI11_PARSE(app, argc, argv);
    return 0;
}
