#include "desktop/qt_input_box.hpp"

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>

#include "desktop/qt_form_binding.hpp"
#include "dialogs/input_box_form.hpp"

namespace ostrivane::desktop {

namespace {

Qt::Key QtKeyOf(int keyCode) {
    switch (keyCode) {
        case 35: return Qt::Key_End;
        case 37: return Qt::Key_Left;
        case 39: return Qt::Key_Right;
        default: return Qt::Key_unknown;
    }
}

}  // namespace

void AttachInputBox(QtFormBinding& binding, InputBoxForm& box) {
    // The form previews no keys: those typed into its controls go to them,
    // so its key handler sees none of them.
    QtFormBinding* b = &binding;
    box.SendKey.Connect([b](int keyCode) {
        const Qt::Key key = QtKeyOf(keyCode);
        if (key == Qt::Key_unknown) return;
        QTimer::singleShot(0, b, [b, key] {
            QWidget* target = b->Window()->focusWidget();
            if (!target) return;
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(target, &press);
            QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
            QApplication::sendEvent(target, &release);
        });
    });
}

void DetachInputBox(QtFormBinding&, InputBoxForm& box) {
    box.SendKey.Connect(nullptr);
}

}  // namespace ostrivane::desktop
