// The desktop program: the core's main form on Qt, its lines as X windows.
// A module that the launcher loads, so that a start which only forwards
// its command line never loads the toolkit.
#include <QApplication>
#include <QFont>
#include <QString>

#include <string>
#include <vector>

#include "desktop/curl_transport.hpp"
#include "desktop/desktop_rules.hpp"
#include "desktop/entry_point.hpp"
#include "desktop/instance_socket.hpp"
#include "desktop/pictures.hpp"
#include "desktop/qt_desktop.hpp"
#include "desktop/qt_dialogs.hpp"
#include "desktop/qt_form_binding.hpp"
#include "desktop/qt_trash.hpp"
#include "desktop/x11_input.hpp"
#include "desktop/x11_window_system.hpp"
#include "desktop/xcb_line_windows.hpp"
#include "editor/main_form.hpp"
#include "lib/error_handler.hpp"
#include "lib/file_test.hpp"
#include "lib/window_helpers.hpp"
#include "overlay/marker_windows.hpp"
#include "store/data_file.hpp"
#include "store/ini_setting_store.hpp"

using namespace ostrivane;

// Called by the launcher once no running copy took the command line.
extern "C" int ostrivane_desktop_main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QString::fromLatin1(kAppTitle));
    QApplication::setQuitOnLastWindowClosed(false);  // the program lives on in the tray
    // Every window without an icon of its own (message and input boxes, options,
    // about) shows the program's; the desktop entry names the same icon.
    QApplication::setWindowIcon(desktop::DrawIcon(kProgramIcon));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.ostrivane.Ostrivane"));
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
    desktop::QtTrash trash;
    lib_AttachTrash(&trash);
    lib_AttachErrorBoxes(&desk, &dialogs, kAppTitle);
    MarkerWindows overlay(lineWindows, desk);
    desktop::X11Input input;
    MainForm frm(dialogs, overlay, desk, input);
    overlay.Attach(frm);
    frm.settings = &settings;
    desktop::CurlTransport internet;
    frm.internet = &internet;

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
    if (desktop::RefuseOverlongCommandLine(commandLine)) return 1;

    bool goOn = false;
    desktop::RunEntryPoint([&] { goOn = frm.Form_Load(commandLine); });
    if (!goOn) return 0;
    return app.exec();
}
