// While it lives, no file may grow beyond a few bytes: writes fail with "File
// too large", as on a full disk, whoever runs the test (root included).
// Report nothing to a file while it lives.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace ostrivane {

class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes = 16) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &old_);
        rlimit limit = old_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    void (*handler_)(int);
    rlimit old_{};
};

}  // namespace ostrivane
