#include "desktop/tray_icon.hpp"

#include <QAction>
#include <QCursor>
#include <QIcon>
#include <QMenu>
#include <QMetaObject>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>

#include <map>
#include <utility>

#include "desktop/entry_point.hpp"
#include "form/controls.hpp"

namespace ostrivane::desktop {

namespace {

// The mouse messages the main form's decoder knows.
constexpr int kLeftButtonUp = 514;
constexpr int kLeftButtonDoubleClick = 515;
constexpr int kRightButtonUp = 517;

// A red crosshair with a dark rim, so that it reads on light and dark panels.
QPixmap CrosshairPixmap(int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const int thickness = size >= 32 ? 3 : 1;
    const int middle = (size - thickness) / 2;
    const int gap = size / 6;
    const QColor rim(40, 40, 40);
    const QColor line(230, 20, 20);
    const auto arms = [&](int grow, const QColor& colour) {
        const int t = thickness + 2 * grow;
        const int m = middle - grow;
        // left, right, top, bottom arm, each stopping short of the centre
        painter.fillRect(0, m, middle - gap + grow, t, colour);
        painter.fillRect(middle + thickness + gap - grow, m, size - (middle + thickness + gap - grow), t, colour);
        painter.fillRect(m, 0, t, middle - gap + grow, colour);
        painter.fillRect(m, middle + thickness + gap - grow, t, size - (middle + thickness + gap - grow), colour);
    };
    arms(1, rim);
    arms(0, line);
    painter.fillRect(middle, middle, thickness, thickness, line);
    return pixmap;
}

QIcon CrosshairIcon() {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64}) icon.addPixmap(CrosshairPixmap(size));
    return icon;
}

QString Latin1(const std::string& text) {
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

void AddEntries(QMenu& menu, form::MenuItem& parent, std::map<QAction*, form::MenuItem*>& entries) {
    for (form::MenuItem* item : parent.Items) {
        if (item == nullptr || !item->Visible()) continue;
        if (item->IsSeparator()) {
            menu.addSeparator();
            continue;
        }
        // The caption's '&' stays a mnemonic, as it is in the model.
        const QString caption = Latin1(item->Caption());
        if (!item->Items.empty()) {
            QMenu* sub = menu.addMenu(caption);
            sub->setEnabled(item->Enabled());
            AddEntries(*sub, *item, entries);
            continue;
        }
        QAction* action = menu.addAction(caption);
        action->setEnabled(item->Enabled());
        if (item->Checked()) {
            action->setCheckable(true);
            action->setChecked(true);
        }
        entries.emplace(action, item);
    }
}

}  // namespace

TrayIcon::TrayIcon(std::function<void(int)> onMessage) : onMessage_(std::move(onMessage)) {}

TrayIcon::~TrayIcon() = default;

void TrayIcon::Add(const std::string& tip) {
    if (!icon_) {
        icon_ = std::make_unique<QSystemTrayIcon>(CrosshairIcon());
        // No context menu of Qt's own: the form decides what a right click does.
        QObject::connect(icon_.get(), &QSystemTrayIcon::activated, [this](QSystemTrayIcon::ActivationReason reason) {
            int message = 0;
            switch (reason) {
                case QSystemTrayIcon::Trigger: message = kLeftButtonUp; break;
                case QSystemTrayIcon::DoubleClick: message = kLeftButtonDoubleClick; break;
                case QSystemTrayIcon::Context: message = kRightButtonUp; break;
                default: return;
            }
            // Posted, not sent: the handler may remove the icon, and with it the
            // widget whose mouse event is still on the stack here.
            QMetaObject::invokeMethod(
                icon_.get(),
                [this, message] {
                    if (onMessage_) RunEntryPoint([this, message] { onMessage_(message); });
                },
                Qt::QueuedConnection);
        });
    }
    icon_->setToolTip(Latin1(tip));
    icon_->show();
}

void TrayIcon::Remove() {
    if (icon_) icon_->hide();
}

void TrayIcon::ShowPopup(form::MenuItem& menu) {
    QMenu popup;
    std::map<QAction*, form::MenuItem*> entries;
    AddEntries(popup, menu, entries);
    if (entries.empty()) return;
    QAction* chosen = popup.exec(QCursor::pos());
    const auto it = entries.find(chosen);
    if (it == entries.end()) return;
    form::MenuItem* item = it->second;
    RunEntryPoint([item] { item->PerformClick(); });
}

bool TrayIcon::Available() { return QSystemTrayIcon::isSystemTrayAvailable(); }

}  // namespace ostrivane::desktop
