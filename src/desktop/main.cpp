// The desktop program: the core's main form on Qt, its lines as X windows.
#include <QApplication>
#include <QFont>
#include <QString>

#include <cstdio>
#include <string>
#include <vector>

#include "desktop/command_frame.hpp"
#include "desktop/desktop_rules.hpp"
#include "desktop/entry_point.hpp"
#include "desktop/instance_channel.hpp"
#include "desktop/qt_desktop.hpp"
#include "desktop/qt_dialogs.hpp"
#include "desktop/qt_form_binding.hpp"
#include "desktop/x11_window_system.hpp"
#include "desktop/xcb_line_windows.hpp"
#include "editor/main_form.hpp"
#include "lib/text.hpp"
#include "lib/window_helpers.hpp"
#include "overlay/marker_windows.hpp"
#include "store/data_file.hpp"
#include "store/ini_setting_store.hpp"

using namespace ostrivane;

namespace {

// The name under which the main form's guard holds the channel.
std::string InstanceName() { return std::string("i") + kAppTitle + "i"; }

// A command line beyond the channel's limit is refused by this start itself.
bool Refused(const std::string& commandLine) {
    const std::string text = LCase(Trim(commandLine));
    if (desktop::FitsFrame(text)) return false;
    std::fprintf(stderr, "%s: a command line of %zu characters was refused: at most %zu are taken\n",
                 ExecutableBaseName().c_str(), text.size(), desktop::kMaxCommandBytes);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    // A second start that only carries its command line builds no toolkit
    // object: it reaches the running copy at once, from here. Arguments that
    // may be the toolkit's own options take the toolkit's road.
    bool toolkitOptions = false;
    std::vector<std::string> direct;
    for (int i = 1; i < argc; ++i) {
        toolkitOptions = toolkitOptions || argv[i][0] == '-';
        direct.push_back(desktop::Latin1FromUtf8(argv[i]));
    }
    if (!toolkitOptions) {
        const std::string commandLine = desktop::JoinArguments(direct);
        if (Refused(commandLine)) return 1;
        // Form_Load trims and lowers it the same way, should no copy answer.
        const std::string text = LCase(Trim(commandLine));
        if (!text.empty() && desktop::InstanceChannel::Forward(InstanceName(), text)) return 0;
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QString::fromLatin1(kAppTitle));
    QApplication::setQuitOnLastWindowClosed(false);  // the program lives on in the tray
    // The forms are laid out for a small dialog font.
    QFont font = QApplication::font();
    font.setPointSize(8);
    QApplication::setFont(font);

    IniSettingStore settings;
    desktop::XcbLineWindows lineWindows;
    desktop::QtDialogs dialogs;
    desktop::QtDesktop desk;
    desktop::X11WindowSystem windowSystem;
    lib_AttachBusyCursor(&windowSystem);  // the hourglass of lib_SetBusy
    MarkerWindows overlay(lineWindows, desk);
    MainForm frm(dialogs, overlay, desk);
    overlay.Attach(frm);
    frm.settings = &settings;

    desktop::QtFormBinding binding(frm, frm.MenuBar());
    binding.OnQueryUnload = [&frm](bool& cancel) {
        frm.Form_QueryUnload(cancel, 0);
        if (!cancel) frm.Form_Unload();
    };
    desk.SetTrayMessageHandler([&frm](int message) {
        desktop::RunEntryPoint([&frm, message] { frm.Form_MouseMove(0, 0, message * 15.0, 0.0); });
    });
    desk.SetCommandHandler([&frm](const std::string& text) {
        desktop::RunEntryPoint([&frm, &text] {
            // Every forwarded command acts, also one equal to the last.
            if (frm.txtChangeModeHid.Text() == text)
                frm.txtChangeModeHid.Change.Raise();
            else
                frm.txtChangeModeHid.SetText(text);
        });
    });

    std::vector<std::string> arguments;
    const QStringList all = QCoreApplication::arguments();
    for (qsizetype i = 1; i < all.size(); ++i) arguments.push_back(all[i].toLatin1().toStdString());
    const std::string commandLine = desktop::JoinArguments(arguments);
    if (Refused(commandLine)) return 1;

    bool goOn = false;
    desktop::RunEntryPoint([&] { goOn = frm.Form_Load(commandLine); });
    if (!goOn) return 0;
    return app.exec();
}
