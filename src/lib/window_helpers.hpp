// Window helpers of the library: rectangles, titles, the window search, the
// hourglass, the file and colour dialogs, and small setters on the form
// model's controls.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "form/controls.hpp"
#include "platform/desktop.hpp"
#include "platform/dialogs.hpp"
#include "platform/window_system.hpp"

namespace ostrivane {

// Selects the first item equal to value: its text without regard to case,
// or with byItemData its item data as a number. The form model keeps no item
// data, so every item's is 0, as the toolkit leaves an item nobody set.
// Setting ListIndex fires the list's Click; a run-time error on that way is
// ignored and makes the result false. True when an item was selected; without
// a match the list is not touched. Any other run-time error is raised again
// under the source "Vexil.lib_SelectFindInList".
bool lib_SelectFindInList(form::ListBox& list, std::string_view value, bool byItemData);

// A window's rectangle, or its client area's; window 0 gives the work area.
// Relative to parent subtracts the parent's Left and Top (of the same kind of
// rectangle; the work area for a top-level window).
Rectangle lib_GetRect(WindowSystem& ws, WindowHandle window, bool relativeToParent, bool clientArea);
// The parent's window rectangle; the work area for a top-level window.
Rectangle lib_GetParentRect(WindowSystem& ws, WindowHandle window);
// Moves the window onto rect; relative to parent adds the parent's Left and
// Top to all four edges first.
void lib_SetRect(WindowSystem& ws, WindowHandle window, const Rectangle& rect, bool relativeToParent);

// The first top-level window of the process, in stacking order; 0 if none.
WindowHandle lib_FindProcessWindow(WindowSystem& ws, std::int32_t processId);
// The title as a buffer of 200 takes it: at most 199 characters, cut at the
// first NUL. Window 0 stands for the foreground window. The length goes to
// lib_ApiResult.
std::string lib_GetWindowTitle(WindowSystem& ws, WindowHandle window);

// Walks the children of parent (of the desktop for 0) and their siblings,
// matching the upper-cased titles against the upper-cased pattern by Like.
// skip is never a match. Without results the first find ends the walk and is
// the result; with results every find raises count and is stored at that
// index (the vector grows as needed). deep goes down the whole tree; without
// it only the top-level windows' children are searched, and none below the
// skip window.
WindowHandle lib_FindWindowLike(WindowSystem& ws, std::string_view pattern, bool deep, WindowHandle skip,
                                std::vector<WindowHandle>* results, WindowHandle parent, std::int16_t& count);

// True while the program says it is busy (the hourglass).
extern bool BusyState;
// The window system whose pointer lib_SetBusy switches and whose window in
// front names the message box; none leaves only the flag and no title.
void lib_AttachBusyCursor(WindowSystem* ws);
// That window system, for the file dialogs of callers that hold none; null
// while none is attached.
WindowSystem* lib_AttachedWindowSystem();
// lib_GetWindowTitle of the foreground window, through that window system.
std::string ForegroundWindowTitle();
void lib_SetBusy(bool on);

// Each item of the comma list as a 32-bit number (one that fails to convert
// counts 0), stored as the box's tab stops; an empty list clears them.
void lib_SetTabStops(form::TextBox& box, std::string_view list);
void lib_ShowWindow(WindowSystem& ws, WindowHandle window, int command);
// Label, CommandButton, CheckBox and MenuItem have a caption; any other
// control is left alone.
void lib_SetCaption(std::string_view text, form::Control& control);
void lib_SetTopmost(Desktop& desktop, form::Form& form, bool on);
bool lib_SetClipboardText(Desktop& desktop, const std::string& text);
// The colour chosen, or -1 on cancel. The owner only places the dialog.
std::int32_t lib_ChooseColor(Dialogs& dialogs, std::int32_t colour, WindowHandle owner);

// The file dialogs: a full path, or "" on cancel. An empty title takes the
// dialog's default, "Open" or "Save As".
std::string lib_GetOpenFile(WindowSystem& ws, std::string_view initialDir, std::string_view description,
                            std::string_view extension, WindowHandle owner, std::string_view file,
                            std::string_view title);
std::string lib_GetSaveFile(WindowSystem& ws, std::string_view initialDir, std::string_view description,
                            std::string_view extension, WindowHandle owner, std::string& file,
                            std::string_view title);
// The filter of both dialogs: description (*.ext) NUL *.ext NUL.
std::string FileDialogFilter(std::string_view description, std::string_view extension);

}  // namespace ostrivane
