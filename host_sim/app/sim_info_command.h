// "zelvar-sim info": the start-up dialogue alone. The plug-in is loaded,
// created and initialised, and finished again; what it said to the host on
// the way is printed, message by message.
#pragma once

#include "plugin_loader.h"

#include <iosfwd>
#include <string>

namespace zelvar_sim {

struct InfoRequest {
    std::string host_name = "Zelvar";
    std::string host_version = "5.6";
    bool show_manifest = false;
};

// Answers the process exit code.
int runInfo(std::ostream& out, PluginLibrary& library, const InfoRequest& request);

} // namespace zelvar_sim
