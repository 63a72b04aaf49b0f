// The program's entry: a second start that only carries its command line
// hands it to the running copy and ends, having loaded no toolkit library;
// any other start loads the desktop module and runs it.
#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "desktop/command_frame.hpp"
#include "desktop/desktop_rules.hpp"
#include "desktop/instance_socket.hpp"
#include "editor/main_form.hpp"
#include "lib/text.hpp"

namespace {

using namespace ostrivane;

constexpr char kDesktopModule[] = "libostrivane-desktop.so";
constexpr char kDesktopEntry[] = "ostrivane_desktop_main";

// True when a running copy took the command line. Arguments that may be
// the toolkit's own options take the toolkit's road, which strips them.
bool ForwardedWithoutToolkit(int argc, char** argv, bool& refused) {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) {
        if (argv[i][0] == '-') return false;
        arguments.push_back(desktop::Latin1FromUtf8(argv[i]));
    }
    const std::string commandLine = desktop::JoinArguments(arguments);
    refused = desktop::RefuseOverlongCommandLine(commandLine);
    // Form_Load trims and lowers it the same way, should no copy answer.
    const std::string text = LCase(Trim(commandLine));
    return !refused && !text.empty() && desktop::ForwardToRunningCopy(InstanceName(), text);
}

// Beside the program file (the build tree), else in the installed tree's
// module directory seen from the program's (so that an unpacked package runs
// where it lies), else where the loader looks.
std::string DesktopModulePath() {
    std::error_code ec;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
    if (!ec) {
        for (const std::filesystem::path& dir : {self.parent_path(), self.parent_path() / OSTRIVANE_MODULE_DIR}) {
            const std::filesystem::path module = dir / kDesktopModule;
            if (std::filesystem::exists(module, ec)) return module.lexically_normal().string();
        }
    }
    return kDesktopModule;
}

}  // namespace

int main(int argc, char** argv) {
    bool refused = false;
    if (ForwardedWithoutToolkit(argc, argv, refused)) return 0;
    if (refused) return 1;

    void* module = ::dlopen(DesktopModulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        desktop::Say(std::string("cannot load the desktop: ") + ::dlerror());
        return 1;
    }
    using Entry = int (*)(int, char**);
    const auto entry = reinterpret_cast<Entry>(::dlsym(module, kDesktopEntry));
    if (entry == nullptr) {
        desktop::Say(std::string("cannot load the desktop: ") + ::dlerror());
        return 1;
    }
    // The module stays loaded until the process ends: Qt's exit-time work runs in it.
    return entry(argc, argv);
}
