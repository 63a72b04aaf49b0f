// frmMain: the one editor of the marker table. It owns the application's
// state for the whole run: the table, the form flags, the controls.
// Its handlers live in one source file per subject:
//   main_form.cpp           controls, captions, menus, start state
//   main_form_state.cpp     table and fields in step, enable rules, check boxes
//   main_form_fields.cpp    key filters, Validate corrections and tails, colours
//   main_form_markers.cpp   append, delete, duplicate
//   main_form_nudge.cpp     the four nudge bars
//   main_form_groups.cpp    group list, load, save, rename, delete, deselect
//   main_form_exchange.cpp  export of the loaded group, import with a rescaled copy
//   main_form_layout.cpp    where the controls stand, in twips
// and, in the folders of their subsystems:
//   overlay/main_form_show.cpp     Go: the switch between stopped and showing
//   shell/main_form_startup.cpp    load, settings, unload, stay on top
//   shell/main_form_commands.cpp   the command channel, the help text, the about box
//   shell/main_form_tray.cpp       the tray icon, its popup, restore
//   dialogs/main_form_options.cpp  the options dialog and what follows it
//   net/main_form_update_check.cpp the update check of the Help menu
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "form/controls.hpp"
#include "form/form.hpp"
#include "platform/desktop.hpp"
#include "platform/dialogs.hpp"
#include "platform/input.hpp"
#include "platform/overlay.hpp"
#include "store/markers.hpp"

namespace ostrivane {

class InternetTransport;
class SettingStore;

inline constexpr char kMainFormCaption[] = "Ostrivane";

// The name the single-instance guard holds: "i", the title, "i".
std::string InstanceName();

class MainForm : public form::Form {
public:
    MainForm(Dialogs& dialogs, Overlay& overlay, Desktop& desktop, Input& input);

    // ---- State ----------------------------------------------------------
    MarkerStore store;  // Markers, MarkerCount, GlobalDefaults
    ScreenMetrics screen;
    std::string DataFile;
    bool Dirty = false;
    bool Loading = false;
    bool Showing = false;
    bool Unloading = false;
    bool FlashPhase = false;
    std::int16_t CurrentGroup = -1;
    std::int16_t GroupFormat = 0;
    // The hooks (shell/main_form_hooks.cpp). The key flags are True as -1.
    HookHandle KeyboardHook = 0;
    HookHandle MouseHook = 0;
    std::int16_t LCtrlDown = 0, RCtrlDown = 0, LShiftDown = 0, RShiftDown = 0;
    std::int16_t MouseMode = 0;  // 0 idle, 1 placing, 2 and 3 dragging a line
    std::int16_t GrabbedMarker = 0;
    std::int16_t GrabProximity = 10;
    // Placing and dragging (shell/main_form_add_marker.cpp, main_form_grab.cpp).
    std::int16_t AddMarkerThickness = 1;
    std::int32_t NewHlen = -1, NewVlen = -1, NewColour = -1, NewThickness = -1, NewOpacity = -1, NewDotted = -1;
    std::int16_t LastCursorX = 0, LastCursorY = 0;
    bool FormWasForeground = false;
    // The single-instance guard: whether a copy was already running.
    struct InstanceGuardState {
        bool owned = false;
        bool InstExists() const { return !owned; }
    } InstanceGuard;
    bool TrayIconCreated = false;

    // ---- Controls -------------------------------------------------------
    form::ListBox lstGroups;
    form::ListBox lstMarkers;
    form::TextBox txtHpos, txtVpos, txtHlen, txtVlen, txtColour, txtThickness, txtOpacity;
    form::CheckBox chkDotted;
    form::TextBox txtHlenGrpDef, txtVlenGrpDef, txtColourGrpDef, txtThicknessGrpDef, txtOpacityGrpDef;
    form::CheckBox chkDottedGrpDef;
    form::TextBox txtGroupNotes;
    form::TextBox txtHmax, txtVmax;
    form::CommandButton cmdAddMarker, cmdDelMarker, cmdSaveGroup, cmdDelGroup, cmdShow;
    form::CheckBox chkFlashSelected, chkCopyCurrOnAdd, chkAllowGrabMarkers;
    form::CheckBox chkHideOnGo, chkRestoreOnStop;  // invisible, no part to play
    form::Label lblMsg;
    form::Label lblGroups, lblMarkers, lblMove, lblResize;
    form::Label lblHpos, lblVpos, lblHlen, lblVlen, lblColour, lblThickness, lblOpacity, lblDotted;
    form::ScrollBar scrNudgeX, scrNudgeY, scrNudgeW, scrNudgeH;
    form::TextBox txtChangeModeHid;  // invisible: the command channel
    form::CommandButton cmdExit;     // invisible: the one way out, behind mnuExit and mnuPopupExit

    form::MenuItem mnuFile, mnuFileMinToTray, mnuOptions, mnuExit;
    form::MenuItem mnuEdit, mnuAddMarker, mnuDelMarker, mnuDupMarker, mnuSep2, mnuSaveGroup, mnuSaveAsGroup,
        mnuRenGroup, mnuSep3, mnuExportGroup, mnuImportGroup, mnuSep4, mnuClearGroupSelection;
    form::MenuItem mnuView, mnuShow, mnuFlashSelected, mnuStayOnTop;
    form::MenuItem mnuHelp, mnuHelpHelp, mnuHelpCheckOnlineForUpdates, mnuHelpAbout;
    // The tray icon's popup menu, no menu of the form's own.
    form::MenuItem mnuPopup, mnuPopupShow, mnuPopupAddMarker, mnuPopupRestore, mnuSep1, mnuPopupExit;

    form::Timer timAddMarker, timAddMarkerComplete, timMoveMarkerStart, timMoveMarker, timMoveMarkerComplete,
        timFlashSelected;

    // The menu bar in order.
    std::vector<form::MenuItem*> MenuBar() { return {&mnuFile, &mnuEdit, &mnuView, &mnuHelp}; }

    // ---- Overlay --------------------------------------------------------
    void ShowMarker(int row) { overlay_.ShowMarker(row); }
    void ShowAllMarkers() { overlay_.ShowAllMarkers(); }
    void DestroyMarkerWindows(int row) { overlay_.DestroyMarkerWindows(row); }
    void DestroyAllMarkerWindows() { overlay_.DestroyAllMarkerWindows(); }

    // ---- Main form state (main_form_state.cpp) --------------------------
    void UpdateMarkerTable();
    void ClearMarkerFields();
    void ClearGroupDefaults();
    void EnableGroupControls(bool enable);
    void EnableMarkerControls(bool fields, bool del);
    void EnableNudgeMove(bool enable);
    void EnableNudgeResize(bool enable);
    void lstMarkers_Click();
    void chkDotted_MouseDown();
    void chkDotted_Click();
    void chkDottedGrpDef_MouseDown();
    void chkDottedGrpDef_Click();
    void chkCopyCurrOnAdd_Click();
    void chkAllowGrabMarkers_Click();
    // Fills the group default controls from row 0.
    void FillGroupDefaultFields();

    // ---- Field rules (main_form_fields.cpp) ------------------------------
    void SelectAllText(form::TextBox& textbox);
    bool SetColourField(form::TextBox& textbox, const std::string& text);
    bool ChartColour(form::TextBox& textbox);
    void txtHpos_Validate(bool& cancel);
    void txtVpos_Validate(bool& cancel);
    void txtHlen_Validate(bool& cancel);
    void txtVlen_Validate(bool& cancel);
    void txtColour_Validate(bool& cancel);
    void txtThickness_Validate(bool& cancel);
    void txtOpacity_Validate(bool& cancel);
    void txtHlenGrpDef_Validate(bool& cancel);
    void txtVlenGrpDef_Validate(bool& cancel);
    void txtColourGrpDef_Validate(bool& cancel);
    void txtThicknessGrpDef_Validate(bool& cancel);
    void txtOpacityGrpDef_Validate(bool& cancel);
    void txtGroupNotes_Validate(bool& cancel);
    void txtColour_DblClick();
    void txtColourGrpDef_DblClick();
    // Update and show the marker / all markers.
    void UpdateAndShowMarker();
    void UpdateAndShowAll();

    // ---- Marker list (main_form_markers.cpp) ----------------------------
    void AppendMarker(std::int32_t hpos, std::int32_t vpos, std::int32_t hlen, std::int32_t vlen,
                      std::int32_t colour, std::int32_t thickness, std::int32_t opacity, std::int32_t dotted);
    void cmdDelMarker_Click();
    void mnuDupMarker_Click();

    // ---- Nudge bars (main_form_nudge.cpp) -------------------------------
    void SetNudgeRanges();
    void scrNudgeX_Change();
    void scrNudgeY_Change();
    void scrNudgeW_Change();
    void scrNudgeH_Change();

    // ---- Groups (main_form_groups.cpp) ----------------------------------
    static std::int16_t FindInList(const form::ListBox& list, const std::string& text);
    void LoadGroupList();
    void PromptToSave(bool allowCancel);
    void SaveGroup();
    void SaveGroupAs();
    void RenameGroup();
    void DeleteGroup();
    void ClearGroupSelection();
    void LoadGroup();
    void lstGroups_DblClick();
    // The first item naming the same section as text: the file matches
    // section names without regard to case.
    static std::int16_t FindSectionInList(const form::ListBox& list, const std::string& text);
    // After a group write of the data file: false, with a warning that names
    // the file and the system's reason, when it failed.
    bool GroupWriteWorked(bool written, std::string_view group, std::string_view operation);

    // ---- Export and import (main_form_exchange.cpp) ----------------------
    void ExportGroup();
    void ImportGroup();

    // ---- Show and stop (overlay/main_form_show.cpp) ---------------------
    void Go();

    // ---- Hooks and hot keys (shell/main_form_hooks.cpp) -----------------
    void HookKeyboard();
    void UnhookKeyboard();
    void HookMouse();
    void UnhookMouse();
    HookAnswer KeyboardProc(int code, std::uint32_t message, const KeyboardRecord& record);
    HookAnswer MouseProc(int code, std::uint32_t message);

    // ---- Placing a marker by mouse (shell/main_form_add_marker.cpp) -----
    void cmdAddMarker_Click();
    void timAddMarker_Tick();
    void timAddMarkerComplete_Tick();
    // Fixes the new marker at the cursor.
    void AddMarker();

    // ---- Grabbing and dragging a line (shell/main_form_grab.cpp) --------
    void timMoveMarkerStart_Tick();
    void timMoveMarker_Tick();
    void timMoveMarkerComplete_Tick();
    // Shows the mouse pointer again, for certain.
    void MoveMarker();

    // ---- Flash selected (overlay/main_form_flash.cpp) --------------------
    void ToggleFlashSelected(bool fromCheckBox);
    void timFlashSelected_Tick();

    // ---- Start-up and shutdown (shell/main_form_startup.cpp) -------------
    // Returns false when this copy is to end at once (a second copy, or "/quit").
    bool Form_Load(const std::string& commandLine);
    void LoadSettings();
    void Form_QueryUnload(bool& cancel, int unloadMode);
    void cmdExit_Click();
    void Form_Unload();
    void ToggleStayOnTop(bool flag);
    void ReadScreenMetrics();
    // Where LoadSettings finds the data directory; set by main() (a test
    // points it at a store of its own). Unset, LoadSettings raises 91.
    SettingStore* settings = nullptr;

    // ---- Command channel (shell/main_form_commands.cpp) ------------------
    void txtChangeModeHid_Change();
    void mnuHelpHelp_Click();
    void mnuHelpAbout_Click();

    // ---- Tray icon (shell/main_form_tray.cpp) ----------------------------
    void CreateTrayIcon();
    // The tray's notifications come in as a mouse move over the form.
    void Form_MouseMove(int button, int shift, double x, double y);
    void mnuPopupRestore_Click();
    void mnuFileMinToTray_Click();

    // ---- Options dialog (dialogs/main_form_options.cpp) ------------------
    void mnuOptions_Click();

    // ---- Update check (net/main_form_update_check.cpp) -------------------
    void mnuHelpCheckOnlineForUpdates_Click();
    // What the update check goes through; set by main(). Unset, it raises 91.
    InternetTransport* internet = nullptr;

    // ---- Layout (main_form_layout.cpp) -----------------------------------
    void LayOutControls();

    Dialogs& dialogs() { return dialogs_; }
    Desktop& desktop() { return desktop_; }
    Overlay& overlay() { return overlay_; }
    Input& input() { return input_; }

private:
    // Each subject connects its own handlers.
    void WireStateEvents();
    void WireFieldEvents();
    void WireMarkerEvents();
    void WireNudgeEvents();
    void WireGroupEvents();
    void WireExchangeEvents();
    void WireShowEvents();
    void WireStartupEvents();
    void WireCommandEvents();
    void WireTrayEvents();
    void WireAddMarkerEvents();
    void WireGrabEvents();
    void WireFlashEvents();
    void WireOptionsEvents();
    void WireUpdateCheckEvents();

    Dialogs& dialogs_;
    Overlay& overlay_;
    Desktop& desktop_;
    Input& input_;
};

}  // namespace ostrivane
