#include "sim_check_context.h"

#include <cerrno>
#include <unistd.h>

namespace zelvar_sim::validate {

void writeAll(int fd, const std::string& text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = ::write(fd, text.data() + done, text.size() - done);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return;
        }
        done += static_cast<std::size_t>(written);
    }
}

void CheckContext::trace(const std::string& line) const
{
    writeAll(m_trace_fd, "trace: " + line + "\n");
}

} // namespace zelvar_sim::validate
