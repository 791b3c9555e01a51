// Checks that need a channel of the plug-in's software channel and data.
#include "sim_validate_checks.h"

namespace zelvar_sim::validate {

std::vector<Check> channelChecks()
{
    return {};
}

} // namespace zelvar_sim::validate
