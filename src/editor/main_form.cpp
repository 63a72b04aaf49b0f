#include "editor/main_form.hpp"

namespace ostrivane {

using form::ListBox;
using form::ScrollBar;

MainForm::MainForm(Dialogs& dialogs, Overlay& overlay, Desktop& desktop, Input& input)
    : form::Form("frmMain"),
      lstGroups(this, "lstGroups", ListBox::Selection::Single),
      lstMarkers(this, "lstMarkers", ListBox::Selection::Extended),
      txtHpos(this, "txtHpos"),
      txtVpos(this, "txtVpos"),
      txtHlen(this, "txtHlen"),
      txtVlen(this, "txtVlen"),
      txtColour(this, "txtColour"),
      txtThickness(this, "txtThickness"),
      txtOpacity(this, "txtOpacity"),
      chkDotted(this, "chkDotted"),
      txtHlenGrpDef(this, "txtHlenGrpDef"),
      txtVlenGrpDef(this, "txtVlenGrpDef"),
      txtColourGrpDef(this, "txtColourGrpDef"),
      txtThicknessGrpDef(this, "txtThicknessGrpDef"),
      txtOpacityGrpDef(this, "txtOpacityGrpDef"),
      chkDottedGrpDef(this, "chkDottedGrpDef"),
      txtGroupNotes(this, "txtGroupNotes"),
      txtHmax(this, "txtHmax"),
      txtVmax(this, "txtVmax"),
      cmdAddMarker(this, "cmdAddMarker"),
      cmdDelMarker(this, "cmdDelMarker"),
      cmdSaveGroup(this, "cmdSaveGroup"),
      cmdDelGroup(this, "cmdDelGroup"),
      cmdShow(this, "cmdShow"),
      chkFlashSelected(this, "chkFlashSelected"),
      chkCopyCurrOnAdd(this, "chkCopyCurrOnAdd"),
      chkAllowGrabMarkers(this, "chkAllowGrabMarkers"),
      chkHideOnGo(this, "chkHideOnGo"),
      chkRestoreOnStop(this, "chkRestoreOnStop"),
      lblMsg(this, "lblMsg"),
      lblGroups(this, "lblGroups"),
      lblMarkers(this, "lblMarkers"),
      lblMove(this, "lblMove"),
      lblResize(this, "lblResize"),
      lblHpos(this, "lblHpos"),
      lblVpos(this, "lblVpos"),
      lblHlen(this, "lblHlen"),
      lblVlen(this, "lblVlen"),
      lblColour(this, "lblColour"),
      lblThickness(this, "lblThickness"),
      lblOpacity(this, "lblOpacity"),
      lblDotted(this, "lblDotted"),
      scrNudgeX(this, "scrNudgeX", ScrollBar::Orientation::Horizontal),
      scrNudgeY(this, "scrNudgeY", ScrollBar::Orientation::Vertical),
      scrNudgeW(this, "scrNudgeW", ScrollBar::Orientation::Horizontal),
      scrNudgeH(this, "scrNudgeH", ScrollBar::Orientation::Vertical),
      txtChangeModeHid(this, "txtChangeModeHid"),
      cmdExit(this, "cmdExit"),
      mnuFile(this, "mnuFile", "&File"),
      mnuFileMinToTray(this, "mnuFileMinToTray", "&Minimise to system tray"),
      mnuOptions(this, "mnuOptions", "&Options"),
      mnuExit(this, "mnuExit", "E&xit"),
      mnuEdit(this, "mnuEdit", "&Edit"),
      mnuAddMarker(this, "mnuAddMarker", "&Add Marker", "Ctrl+M"),
      mnuDelMarker(this, "mnuDelMarker", "&Del Markers", "Ctrl+D"),
      mnuDupMarker(this, "mnuDupMarker", "D&up Markers", "Ctrl+U"),
      mnuSep2(this, "mnuSep2", "-"),
      mnuSaveGroup(this, "mnuSaveGroup", "&Save Group", "Ctrl+G"),
      mnuSaveAsGroup(this, "mnuSaveAsGroup", "Save Group &As", "Ctrl+A"),
      mnuRenGroup(this, "mnuRenGroup", "&Rename Group"),
      mnuSep3(this, "mnuSep3", "-"),
      mnuExportGroup(this, "mnuExportGroup", "&Export Group"),
      mnuImportGroup(this, "mnuImportGroup", "&Import Group"),
      mnuSep4(this, "mnuSep4", "-"),
      mnuClearGroupSelection(this, "mnuClearGroupSelection", "&Clear Group Selection", "Ctrl+E"),
      mnuView(this, "mnuView", "&View"),
      // The hot keys stand in the captions behind blanks; they are no menu shortcuts.
      mnuShow(this, "mnuShow", "&Show                                                 Ctrl+`"),
      mnuFlashSelected(this, "mnuFlashSelected", "&Flash Selected                                   Ctrl+1"),
      mnuStayOnTop(this, "mnuStayOnTop", "Stay On &Top"),
      mnuHelp(this, "mnuHelp", "&Help"),
      mnuHelpHelp(this, "mnuHelpHelp", "&Help"),
      mnuHelpCheckOnlineForUpdates(this, "mnuHelpCheckOnlineForUpdates", "&Check for updates"),
      mnuHelpAbout(this, "mnuHelpAbout", "&About"),
      mnuPopup(this, "mnuPopup", "&SysTray"),
      mnuPopupShow(this, "mnuPopupShow", "Show"),
      mnuPopupAddMarker(this, "mnuPopupAddMarker", "Add Marker"),
      mnuPopupRestore(this, "mnuPopupRestore", "Restore"),
      mnuSep1(this, "mnuSep1", "-"),
      mnuPopupExit(this, "mnuPopupExit", "Exit"),
      timAddMarker(this, "timAddMarker", 5),
      timAddMarkerComplete(this, "timAddMarkerComplete", 1),
      timMoveMarkerStart(this, "timMoveMarkerStart", 1),
      timMoveMarker(this, "timMoveMarker", 200),
      timMoveMarkerComplete(this, "timMoveMarkerComplete", 1),
      timFlashSelected(this, "timFlashSelected", 200),
      dialogs_(dialogs),
      overlay_(overlay),
      desktop_(desktop),
      input_(input) {
    SetCaption(kMainFormCaption);
    Icon = kProgramIcon;

    struct Tip {
        form::Control& control;
        const char* text;
    };
    const Tip tips[] = {
        {txtHpos, "Horizontal starting position of marker"},
        {txtVpos, "Vertical starting position of marker"},
        {txtHlen, "Horizontal length of marker (blank to use group default or S for whole screen)"},
        {txtVlen, "Vertical length of marker (blank to use group default or S for whole screen)"},
        {txtColour, "Marker colour (blank to use group default) :: Dbl-click for chart"},
        {txtThickness, "Thickness of marker (must be odd no)(blank to use group default)"},
        {txtOpacity, "Opacity of marker (1=see through, 100=opaque)(blank to use group default)"},
        {chkDotted, "Is marker to be dotted (grey to use group default)"},
        {txtHlenGrpDef,
         "Group default horizontal length of marker (blank to use global default or S for whole screen)"},
        {txtVlenGrpDef, "Group default vertical length of marker (blank to use global default or S for whole screen)"},
        {txtColourGrpDef, "Group default marker colour (blank to use global default) :: Dbl-click for chart"},
        {txtThicknessGrpDef, "Group default thickness of marker (must be odd no)(blank to use global default)"},
        {txtOpacityGrpDef, "Group default opacity of marker (1=see through, 100=opaque)(blank to use global default)"},
        {chkDottedGrpDef, "Group default are markers to be dotted (grey to use global default)"},
        {txtGroupNotes, "Notes / Description"},
        {txtHmax, "Current screen resolution width"},
        {txtVmax, "Current screen resolution height"},
        {cmdAddMarker, "Add a new marker to list"},
        {cmdDelMarker, "Delete selected marker"},
        {cmdSaveGroup, "Save all markers as a group"},
        {cmdDelGroup, "Delete selected group"},
        {cmdShow, "Display the listed markers"},
        {chkFlashSelected, "Flash the selected marker to help identify it"},
        {chkCopyCurrOnAdd,
         "When adding a new marker, copy settings for length, colour, thickness & opacity from currently selected "
         "marker"},
        {chkAllowGrabMarkers,
         "Allow grabbing markers and drag/drop to new location (note: if markers not full screen, the whole "
         "crosshair will move)"},
    };
    for (const Tip& tip : tips) tip.control.SetToolTipText(tip.text);

    cmdAddMarker.SetCaption("Add &Marker");
    cmdDelMarker.SetCaption("&Del Markers");
    cmdSaveGroup.SetCaption("Save &Group");
    cmdDelGroup.SetCaption("Del Group");
    cmdShow.SetCaption("&Show");
    chkFlashSelected.SetCaption("Flash Sel");
    chkCopyCurrOnAdd.SetCaption("Copy Curr");
    chkAllowGrabMarkers.SetCaption("Grab Mks");
    lblGroups.SetCaption("Saved Groups");
    lblMarkers.SetCaption("Mkrs");
    lblMove.SetCaption("Move");
    lblResize.SetCaption("Resize");
    lblHpos.SetCaption("Hpos");
    lblVpos.SetCaption("Vpos");
    lblHlen.SetCaption("Hlen");
    lblVlen.SetCaption("Vlen");
    lblColour.SetCaption("Colour");
    lblThickness.SetCaption("Thkns");
    lblOpacity.SetCaption("Opacity");
    lblDotted.SetCaption("Dotted");

    chkDotted.ThreeState = true;
    chkDottedGrpDef.ThreeState = true;
    txtGroupNotes.MultiLine = true;
    txtHmax.Locked = true;
    txtVmax.Locked = true;
    chkHideOnGo.SetVisible(false);
    chkRestoreOnStop.SetVisible(false);
    txtChangeModeHid.SetVisible(false);
    txtChangeModeHid.SetText("txtChangeModeHid");  // its name tag for a second start
    cmdExit.SetCaption("E&xit");
    cmdExit.SetVisible(false);
    mnuPopup.SetVisible(false);

    // Every text box but the two screen sizes is disabled at start, and so
    // are the buttons and bars that need a group or a selection.
    for (form::Control* c : std::initializer_list<form::Control*>{
             &txtHpos, &txtVpos, &txtHlen, &txtVlen, &txtColour, &txtThickness, &txtOpacity, &chkDotted,
             &txtHlenGrpDef, &txtVlenGrpDef, &txtColourGrpDef, &txtThicknessGrpDef, &txtOpacityGrpDef,
             &chkDottedGrpDef, &txtGroupNotes, &cmdDelMarker, &cmdSaveGroup, &cmdDelGroup, &scrNudgeX, &scrNudgeY,
             &scrNudgeW, &scrNudgeH, &mnuDelMarker, &mnuDupMarker, &mnuSaveGroup, &mnuSaveAsGroup, &mnuRenGroup,
             &mnuExportGroup})
        c->SetEnabled(false);

    for (form::ScrollBar* bar : {&scrNudgeX, &scrNudgeY, &scrNudgeW, &scrNudgeH}) {
        bar->SmallChange = 1;
        bar->LargeChange = 10;
    }

    mnuFile.Items = {&mnuFileMinToTray, &mnuOptions, &mnuExit};
    mnuEdit.Items = {&mnuAddMarker, &mnuDelMarker,  &mnuDupMarker,   &mnuSep2,        &mnuSaveGroup,
                     &mnuSaveAsGroup, &mnuRenGroup, &mnuSep3, &mnuExportGroup, &mnuImportGroup,
                     &mnuSep4,      &mnuClearGroupSelection};
    mnuView.Items = {&mnuShow, &mnuFlashSelected, &mnuStayOnTop};
    mnuHelp.Items = {&mnuHelpHelp, &mnuHelpCheckOnlineForUpdates, &mnuHelpAbout};
    mnuPopup.Items = {&mnuPopupShow, &mnuPopupAddMarker, &mnuPopupRestore, &mnuSep1, &mnuPopupExit};

    LayOutControls();

    WireStateEvents();
    WireFieldEvents();
    WireMarkerEvents();
    WireNudgeEvents();
    WireGroupEvents();
    WireExchangeEvents();
    WireShowEvents();
    WireStartupEvents();
    WireCommandEvents();
    WireTrayEvents();
    WireAddMarkerEvents();
    WireGrabEvents();
    WireFlashEvents();
    WireOptionsEvents();
    WireUpdateCheckEvents();
}

}  // namespace ostrivane
