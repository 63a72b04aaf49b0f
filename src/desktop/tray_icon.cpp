#include "desktop/tray_icon.hpp"

#include <QAction>
#include <QCursor>
#include <QIcon>
#include <QMenu>
#include <QMetaObject>
#include <QSystemTrayIcon>

#include <map>
#include <utility>

#include "desktop/entry_point.hpp"
#include "desktop/pictures.hpp"
#include "form/controls.hpp"

namespace ostrivane::desktop {

namespace {

// The mouse messages the main form's decoder knows.
constexpr int kLeftButtonUp = 514;
constexpr int kLeftButtonDoubleClick = 515;
constexpr int kRightButtonUp = 517;

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
        icon_ = std::make_unique<QSystemTrayIcon>(DrawIcon(kProgramIcon));
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
