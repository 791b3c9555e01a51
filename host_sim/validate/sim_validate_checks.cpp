#include "sim_validate_checks.h"

namespace zelvar_sim::validate {

std::vector<Check> allChecks()
{
    std::vector<Check> checks = entryPointChecks();
    for (auto* more : {&messageChecks, &channelChecks, &dataChecks}) {
        for (Check& check : more()) {
            checks.push_back(std::move(check));
        }
    }
    return checks;
}

} // namespace zelvar_sim::validate
