// The program's end as the entry points see it.
#pragma once

namespace ostrivane::desktop {

// No entry point runs any more: the program is ending, and events that are
// still queued (timer ticks, clicks) must not reach the core.
void CloseEntryPoints();

}  // namespace ostrivane::desktop
