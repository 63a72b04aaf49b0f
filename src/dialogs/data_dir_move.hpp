// The first half of OK in the options dialog: the data directory in
// txtDataDir is made to exist and stored as the new setting; when the data
// file's path changes, the files at the old and the new place are dealt with.
#pragma once

namespace ostrivane {

class MainForm;
class OptionsForm;
class SettingStore;

// False when OK is to stop here (the user declined to create the directory).
bool MoveDataDirectory(OptionsForm& options, MainForm& frm, SettingStore& settings);

}  // namespace ostrivane
