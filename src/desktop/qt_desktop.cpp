#include "desktop/qt_desktop.hpp"

#include <QApplication>
#include <QClipboard>
#include <QEventLoop>
#include <QGuiApplication>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPixmap>
#include <QPrinter>
#include <QPrinterInfo>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <cmath>

#include "desktop/desktop_rules.hpp"
#include "desktop/entry_control.hpp"
#include "desktop/instance_channel.hpp"
#include "desktop/instance_socket.hpp"
#include "desktop/qt_form_binding.hpp"
#include "desktop/qt_input_box.hpp"
#include "desktop/tray_icon.hpp"
#include "desktop/xcb_basics.hpp"
#include "dialogs/input_box_form.hpp"
#include "dialogs/msgbox_form.hpp"
#include "form/form.hpp"

namespace ostrivane::desktop {

QtDesktop::QtDesktop()
    : tray_(std::make_unique<TrayIcon>([this](int message) {
          if (onTrayMessage_) onTrayMessage_(message);
      })),
      channel_(std::make_unique<InstanceChannel>()) {}

QtDesktop::~QtDesktop() = default;

std::int32_t QtDesktop::GetSystemMetrics(int index) {
    // In device pixels, the unit of the line windows.
    if (index == SM_CXSCREEN || index == SM_CYSCREEN) {
        const QScreen* primary = QGuiApplication::primaryScreen();
        if (!primary) return 0;
        const QSize size = primary->geometry().size() * primary->devicePixelRatio();
        return index == SM_CXSCREEN ? size.width() : size.height();
    }
    std::vector<ScreenRect> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect g = screen->geometry();
        const qreal ratio = screen->devicePixelRatio();
        const auto scaled = [ratio](int v) { return static_cast<int>(std::lround(v * ratio)); };
        screens.push_back({scaled(g.x()), scaled(g.y()), scaled(g.width()), scaled(g.height())});
    }
    return VirtualScreenMetric(screens, index);
}

bool QtDesktop::IsForegroundWindow(form::Form& form) {
    QtFormBinding* binding = QtFormBinding::For(form);
    if (binding == nullptr || !binding->Window()->isVisible()) return false;
    // Qt takes a focus loss for real only some 400 ms later (in case the
    // focus comes back to one of its windows); the server knows at once.
    if (xcb_connection_t* conn = QtConnection())
        return HasInputFocus(conn, static_cast<xcb_window_t>(binding->Window()->winId()));
    return binding->Window()->isActiveWindow();
}

void QtDesktop::SetForegroundWindow(form::Form& form) {
    QtFormBinding* binding = QtFormBinding::For(form);
    // A form hidden in the tray stays hidden: only a shown form comes forward.
    if (!binding || !form.Visible()) return;
    binding->ApplyFormState();
    QWidget* window = binding->Window();
    window->raise();
    window->activateWindow();
}

void QtDesktop::SetTopmost(form::Form& form, bool on) {
    QtFormBinding* binding = QtFormBinding::For(form);
    if (binding) {
        QWidget* window = binding->Window();
        if (window->windowFlags().testFlag(Qt::WindowStaysOnTopHint) != on) {
            const QPoint at = window->pos();
            window->setWindowFlag(Qt::WindowStaysOnTopHint, on);  // this hides the window
            window->move(at);
        }
    }
    form.SetVisible(true);
    if (binding) binding->ApplyFormState();
}

void QtDesktop::ShowModal(form::Form& form) {
    if (ending_) return;
    std::unique_ptr<QtFormBinding> own;
    QtFormBinding* binding = QtFormBinding::For(form);
    if (!binding) {
        own = std::make_unique<QtFormBinding>(form);
        binding = own.get();
        // A fixed dialog without a task bar entry.
        binding->Window()->setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                          Qt::WindowCloseButtonHint);
    }
    QWidget* window = binding->Window();
    window->setWindowModality(Qt::ApplicationModal);
    if (auto* box = dynamic_cast<MsgBoxForm*>(&form)) {
        binding->OnFormKeyPress = [box](int& key) { box->KeyPress.Raise(key); };
        // The message reads as text on the form, not as a field.
        if (auto* text = qobject_cast<QPlainTextEdit*>(binding->WidgetOf(box->txtMessage))) {
            text->setFrameShape(QFrame::NoFrame);
            text->document()->setDocumentMargin(0);
        }
    }
    if (auto* box = dynamic_cast<InputBoxForm*>(&form)) AttachInputBox(*binding, *box);
    QtFormBinding* owner = form.CentreOwner ? QtFormBinding::For(*form.CentreOwner) : nullptr;
    if (owner && !owner->Window()->isVisible()) owner = nullptr;
    if (owner || (form.Left == 0 && form.Top == 0)) {
        // Centred on the owner; a form with no place of its own, on the screen.
        binding->Sync();
        window->adjustSize();
        const QScreen* screen = QGuiApplication::primaryScreen();
        const QRect area = owner    ? owner->Window()->frameGeometry()
                           : screen ? screen->availableGeometry()
                                    : QRect(0, 0, 1024, 768);
        const QSize size = window->sizeHint();
        form.Left = PixelsToTwips(area.center().x() - size.width() / 2);
        form.Top = PixelsToTwips(area.center().y() - size.height() / 2);
    }
    const QPointer<QWidget> front = QApplication::activeWindow();
    QEventLoop loop;
    binding->OnVisibleChanged = [&form, &loop] {
        if (!form.Visible()) loop.quit();
    };
    binding->Sync();
    if (owner) {
        // In front of its owner, as the window manager keeps a transient
        // window. Only once placed: a native window made earlier would map
        // where the widget was before.
        window->winId();
        window->windowHandle()->setTransientParent(owner->Window()->windowHandle());
    }
    form.SetVisible(true);
    binding->Sync();
    if (form.Visible() && !ending_) {
        window->raise();
        window->activateWindow();
        modalLoops_.push_back(&loop);
        loop.exec();
        modalLoops_.pop_back();
    }
    binding->OnVisibleChanged = nullptr;
    binding->OnFormKeyPress = nullptr;
    if (auto* box = dynamic_cast<InputBoxForm*>(&form)) DetachInputBox(*binding, *box);
    if (!own) {
        window->setWindowModality(Qt::NonModal);
        if (owner) window->windowHandle()->setTransientParent(nullptr);
    }
    // The keyboard goes back to the window in front, also without a window manager.
    if (front && front != window && front->isVisible()) front->activateWindow();
}

void QtDesktop::DoEvents() { QCoreApplication::processEvents(QEventLoop::AllEvents); }

void QtDesktop::EndProgram() {
    ending_ = true;
    CloseEntryPoints();
    for (QEventLoop* loop : modalLoops_) loop->quit();
    QCoreApplication::exit(0);
}

void QtDesktop::Beep() { QApplication::beep(); }

bool QtDesktop::SetClipboardText(const std::string& text) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard) return false;
    clipboard->setText(QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())));
    return true;
}

void QtDesktop::PrintForm(form::Form& form) {
    QtFormBinding* binding = QtFormBinding::For(form);
    if (!binding) return;
    const QPrinterInfo printerInfo = QPrinterInfo::defaultPrinter();
    if (printerInfo.isNull()) return;
    QWidget* window = binding->Window();
    const QPixmap image = window->grab();
    QPrinter printer(printerInfo, QPrinter::HighResolution);
    QPainter painter;
    if (!painter.begin(&printer)) return;
    // The form at its size on the screen.
    const qreal scale = printer.resolution() / static_cast<qreal>(std::max(1, window->logicalDpiX()));
    painter.scale(scale, scale);
    painter.drawPixmap(0, 0, image);
    painter.end();
}

void QtDesktop::AddTrayIcon(const std::string& tip) { tray_->Add(tip); }

void QtDesktop::RemoveTrayIcon() { tray_->Remove(); }

void QtDesktop::ShowPopupMenu(form::MenuItem& menu) { tray_->ShowPopup(menu); }

bool QtDesktop::AcquireInstance(const std::string& name) {
    if (!channel_->Acquire(name)) return false;
    channel_->Listen([this](const std::string& commandText) {
        if (onCommand_) onCommand_(commandText);
    });
    return true;
}

void QtDesktop::ReleaseInstance() { channel_->Release(); }

void QtDesktop::ForwardCommand(const std::string& name, const std::string& commandText) {
    ForwardToRunningCopy(name, commandText);
}

}  // namespace ostrivane::desktop
