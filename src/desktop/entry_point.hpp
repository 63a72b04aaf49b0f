// Every user action and timer tick enters the core through here: a run-time
// error that no handler trapped shows the run-time error box and ends the
// program, as the system does.
#pragma once

#include <functional>

namespace ostrivane::desktop {

void RunEntryPoint(const std::function<void()>& handler);

}  // namespace ostrivane::desktop
