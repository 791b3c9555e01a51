#include "zlruni_logger.h"

#include <boost/log/keywords/channel.hpp>

namespace zlr {

UniLogger& getLogger()
{
    // A function-local static rather than Boost.Log's global logger storage:
    // the storage lives in the shared Boost.Log library and would keep an
    // entry whose holder and attribute objects have their code in this module.
    // The plug-in is unloaded at dlclose and may be loaded again in the same
    // process; the next look-up would then call into unmapped code. This
    // object belongs to the module alone and is destroyed when it unloads.
    // Its construction is thread-safe, and it registers nothing in the core.
    static UniLogger logger(boost::log::keywords::channel = std::string(LOG_CHANNEL));
    return logger;
}

} // namespace zlr
