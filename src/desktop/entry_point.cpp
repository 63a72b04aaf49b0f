#include "desktop/entry_point.hpp"

#include <QApplication>
#include <QMessageBox>
#include <QString>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>

#include "desktop/desktop_rules.hpp"
#include "desktop/entry_control.hpp"
#include "desktop/qt_form_binding.hpp"
#include "lib/errors.hpp"
#include "store/data_file.hpp"

namespace ostrivane::desktop {

namespace {

bool ending = false;

// The run-time error box, then the end: no other event may run after an
// untrapped error, so the program leaves without unwinding the event loop.
[[noreturn]] void ShowErrorAndEnd(const std::string& text) {
    ending = true;  // timers and other events that fire under the box are dropped
    std::fprintf(stderr, "%s\n", text.c_str());
    if (QApplication::instance()) {
        QMessageBox box(QMessageBox::Critical, QString::fromLatin1(kAppTitle), QString::fromLatin1(text),
                        QMessageBox::Ok);
        box.exec();
    }
    std::fflush(nullptr);
    std::_Exit(1);
}

}  // namespace

void CloseEntryPoints() { ending = true; }

void RunEntryPoint(const std::function<void()>& handler) {
    if (ending) return;
    try {
        handler();
        // Places, sizes and the focus change in the model without an event.
        if (!ending) QtFormBinding::SyncAll();
    } catch (const RuntimeError& e) {
        ShowErrorAndEnd(RunTimeErrorBoxText(e.number(), e.description()));
    } catch (const std::bad_alloc&) {
        ShowErrorAndEnd(RunTimeErrorBoxText(kOutOfMemory, RuntimeErrorText(kOutOfMemory)));
    } catch (const std::exception& e) {
        ShowErrorAndEnd(std::string("Unexpected failure:\n\n") + e.what());
    } catch (...) {
        ShowErrorAndEnd("Unexpected failure");
    }
}

}  // namespace ostrivane::desktop
