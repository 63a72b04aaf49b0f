#include "desktop/qt_dialogs.hpp"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QColorDialog>
#include <QInputDialog>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>

#include <map>
#include <optional>

#include "desktop/desktop_rules.hpp"
#include "store/data_file.hpp"

namespace ostrivane::desktop {

namespace {

QString Latin1(const std::string& text) { return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())); }

QString TitleOrApp(const std::string& title) { return Latin1(title.empty() ? std::string(kAppTitle) : title); }

// A box without a Cancel answer cannot be closed by Esc or its close box.
class NoEscape final : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) return true;
        if (event->type() == QEvent::Close) {
            event->ignore();
            return true;
        }
        return QObject::eventFilter(watched, event);
    }
};

// The input box has one width and wraps its prompt; it stands where its
// caller puts it, else in the middle of the screen. Done as it shows, once
// the dialog has laid itself out for the prompt.
class InputBoxShape final : public QObject {
public:
    explicit InputBoxShape(std::optional<QPoint> at) : at_(at) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* dialog = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::Show || dialog == nullptr) return false;
        if (auto* label = dialog->findChild<QLabel*>()) label->setWordWrap(true);
        dialog->setFixedWidth(kInputBoxWidthPixels);
        // As high as the wrapped prompt needs.
        const int height = dialog->layout() ? dialog->layout()->heightForWidth(kInputBoxWidthPixels) : -1;
        if (height > 0) dialog->setFixedHeight(height);
        QPoint at;
        if (at_) {
            at = *at_;
        } else {
            const QScreen* screen = dialog->screen() ? dialog->screen() : QGuiApplication::primaryScreen();
            at = screen->geometry().center() - QPoint(dialog->width() / 2, dialog->height() / 2);
        }
        dialog->move(at);
        return false;
    }

private:
    std::optional<QPoint> at_;
};

QMessageBox::StandardButton ButtonFor(int answer) {
    switch (answer) {
        case kAnswerCancel: return QMessageBox::Cancel;
        case kAnswerAbort: return QMessageBox::Abort;
        case kAnswerRetry: return QMessageBox::Retry;
        case kAnswerIgnore: return QMessageBox::Ignore;
        case kAnswerYes: return QMessageBox::Yes;
        case kAnswerNo: return QMessageBox::No;
        default: return QMessageBox::Ok;
    }
}

// The window that was in front gets the keyboard back when a dialog closes,
// also where no window manager hands it back.
class GiveBackFocus {
public:
    GiveBackFocus() : window_(QApplication::activeWindow()) {}
    ~GiveBackFocus() {
        if (window_ && window_->isVisible()) window_->activateWindow();
    }
    GiveBackFocus(const GiveBackFocus&) = delete;
    GiveBackFocus& operator=(const GiveBackFocus&) = delete;
    QWidget* Window() const { return window_; }

private:
    QPointer<QWidget> window_;
};

QMessageBox::Icon IconFor(MsgBoxIcon icon) {
    switch (icon) {
        case MsgBoxIcon::Critical: return QMessageBox::Critical;
        case MsgBoxIcon::Question: return QMessageBox::Question;
        case MsgBoxIcon::Exclamation: return QMessageBox::Warning;
        case MsgBoxIcon::Information: return QMessageBox::Information;
        case MsgBoxIcon::None: break;
    }
    return QMessageBox::NoIcon;
}

}  // namespace

int QtDialogs::MsgBox(const std::string& prompt, int flags, const std::string& title) {
    const MsgBoxShape shape = MapMsgBoxFlags(flags);
    const GiveBackFocus front;
    QMessageBox box(IconFor(shape.icon), TitleOrApp(title), Latin1(prompt), QMessageBox::NoButton, front.Window());
    box.setTextFormat(Qt::PlainText);
    std::map<QAbstractButton*, int> answers;
    for (int answer : shape.buttons) {
        QPushButton* button = box.addButton(ButtonFor(answer));
        answers[button] = answer;
        if (answer == shape.defaultAnswer) box.setDefaultButton(button);
        if (answer == shape.escapeAnswer) box.setEscapeButton(button);
    }
    NoEscape noEscape;
    if (shape.escapeAnswer == 0) box.installEventFilter(&noEscape);
    box.exec();
    const auto it = answers.find(box.clickedButton());
    return it != answers.end() ? it->second : shape.escapeAnswer != 0 ? shape.escapeAnswer : shape.defaultAnswer;
}

std::string QtDialogs::InputBox(const std::string& prompt, const std::string& title, const std::string& proposal,
                                std::optional<TwipPoint> position) {
    const GiveBackFocus front;
    QInputDialog dialog(front.Window());
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setWindowTitle(TitleOrApp(title));
    dialog.setLabelText(Latin1(prompt));
    dialog.setTextValue(Latin1(proposal));
    std::optional<QPoint> at;
    if (position) at = QPoint(TwipsToPixels(position->left), TwipsToPixels(position->top));
    InputBoxShape shape(at);
    dialog.installEventFilter(&shape);
    if (dialog.exec() != QDialog::Accepted) return {};
    return dialog.textValue().toLatin1().toStdString();
}

std::int32_t QtDialogs::ChooseColor(std::int32_t colour) {
    const Rgb start = ColourToRgb(colour);
    const GiveBackFocus front;
    const QColor chosen = QColorDialog::getColor(QColor(start.red, start.green, start.blue), front.Window());
    if (!chosen.isValid()) return -1;
    return RgbToColour({chosen.red(), chosen.green(), chosen.blue()});
}

}  // namespace ostrivane::desktop
