#include "desktop/qt_form_binding.hpp"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QStringList>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextDocument>
#include <QTextOption>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <chrono>

#include "desktop/desktop_rules.hpp"
#include "desktop/entry_point.hpp"
#include "desktop/pictures.hpp"

namespace ostrivane::desktop {

using form::Control;
using form::Property;

namespace {

std::vector<QtFormBinding*>& Registry() {
    static std::vector<QtFormBinding*> bindings;
    return bindings;
}

QString Latin1(const std::string& text) { return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())); }
std::string ToLatin1(const QString& text) { return text.toLatin1().toStdString(); }

QColor ToQColor(std::int32_t colour) {
    const Rgb rgb = ColourToRgb(colour);
    return QColor(rgb.red, rgb.green, rgb.blue);
}

QRect PixelGeometry(const Control& c) {
    return QRect(TwipsToPixels(c.Left), TwipsToPixels(c.Top), std::max(0, TwipsToPixels(c.Width)),
                 std::max(0, TwipsToPixels(c.Height)));
}

Qt::CheckState CheckStateOf(int value) {
    return value == 1 ? Qt::Checked : value == 2 ? Qt::PartiallyChecked : Qt::Unchecked;
}

bool Focusable(const Control& c) {
    return dynamic_cast<const form::TextBox*>(&c) || dynamic_cast<const form::CommandButton*>(&c) ||
           dynamic_cast<const form::CheckBox*>(&c) || dynamic_cast<const form::ListBox*>(&c) ||
           dynamic_cast<const form::ScrollBar*>(&c);
}

// Scoped "the binding is writing to the widgets".
class Syncing {
public:
    explicit Syncing(int& depth) : depth_(depth) { ++depth_; }
    ~Syncing() { --depth_; }
    Syncing(const Syncing&) = delete;
    Syncing& operator=(const Syncing&) = delete;

private:
    int& depth_;
};

}  // namespace

// The top-level window: its close box, minimise button and moves go to the model.
class FormWindow final : public QWidget {
public:
    explicit FormWindow(QtFormBinding& binding) : binding_(binding) {}

protected:
    void closeEvent(QCloseEvent* event) override {
        event->ignore();  // the model decides whether the window goes
        binding_.OnCloseBox();
    }
    void changeEvent(QEvent* event) override {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::WindowStateChange) binding_.OnUserWindowState();
    }
    void moveEvent(QMoveEvent* event) override {
        QWidget::moveEvent(event);
        binding_.OnUserMove();
    }

private:
    QtFormBinding& binding_;
};

QtFormBinding::QtFormBinding(form::Form& form, std::vector<form::MenuItem*> menuBar)
    : form_(form), window_(std::make_unique<FormWindow>(*this)) {
    Registry().push_back(this);
    auto* layout = new QVBoxLayout(window_.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    if (!menuBar.empty()) {
        auto* bar = new QMenuBar(window_.get());
        for (form::MenuItem* item : menuBar) CreateMenu(nullptr, bar, *item);
        layout->setMenuBar(bar);
    }
    content_ = new QWidget(window_.get());
    layout->addWidget(content_);
    window_->installEventFilter(this);

    // Reading order, so that Tab goes from left to right and top to bottom.
    std::vector<Control*> controls;
    for (const auto& entry : form.Controls()) controls.push_back(entry.second);
    std::stable_sort(controls.begin(), controls.end(), [](const Control* a, const Control* b) {
        return a->Top != b->Top ? a->Top < b->Top : a->Left < b->Left;
    });
    for (Control* c : controls)
        if (!dynamic_cast<form::MenuItem*>(c)) CreateControl(*c);

    // A handler passes through states the window must not take: the close
    // box minimises, then hides. An iconify asked for on the way is carried
    // out late by a window manager, and can leave the form minimised once
    // it has been restored. The window takes the state the handler ends in.
    form_.FormChanged.Connect([this](form::Form&) {
        formPending_ = true;
        ScheduleFlush();
    });
    Sync();
    ApplyForm();
}

QtFormBinding::~QtFormBinding() {
    form_.FormChanged.Connect(nullptr);
    for (auto& entry : bound_) entry.second.control->PropertyChanged.Connect(nullptr);
    auto& all = Registry();
    all.erase(std::remove(all.begin(), all.end(), this), all.end());
    window_->removeEventFilter(this);
    for (auto& entry : byWidget_) const_cast<QObject*>(entry.first)->removeEventFilter(this);
}

QWidget* QtFormBinding::Window() const { return window_.get(); }

QWidget* QtFormBinding::WidgetOf(const Control& control) const {
    const auto it = bound_.find(&control);
    return it == bound_.end() ? nullptr : it->second.widget;
}

QtFormBinding* QtFormBinding::For(const form::Form& form) {
    for (QtFormBinding* b : Registry())
        if (&b->form_ == &form) return b;
    return nullptr;
}

void QtFormBinding::SyncAll() {
    for (QtFormBinding* b : Registry()) b->Sync();
}

// ---- Building -------------------------------------------------------------

void QtFormBinding::CreateMenu(QMenu* parent, QMenuBar* bar, form::MenuItem& item) {
    QAction* action = nullptr;
    if (item.IsSeparator() && parent) {
        action = parent->addSeparator();
    } else if (!item.Items.empty()) {
        QMenu* menu = bar ? bar->addMenu(Latin1(item.Caption())) : parent->addMenu(Latin1(item.Caption()));
        action = menu->menuAction();
        for (form::MenuItem* sub : item.Items) CreateMenu(menu, nullptr, *sub);
        // A menu title's Click comes as it drops down.
        connect(menu, &QMenu::aboutToShow, this, [this, &item] { Enter([&item] { item.PerformClick(); }); });
    } else {
        action = bar ? bar->addAction(Latin1(item.Caption())) : parent->addAction(Latin1(item.Caption()));
        if (!item.Shortcut().empty()) {
            const QKeySequence keys = QKeySequence::fromString(Latin1(item.Shortcut()), QKeySequence::PortableText);
            action->setShortcut(keys);
            shortcuts_.push_back(keys);
        }
        connect(action, &QAction::triggered, this, [this, &item] {
            if (syncing_) return;
            Enter([&item] { item.PerformClick(); });
            ApplyAll(item);  // a checked entry does not toggle by itself
        });
    }
    bound_[&item] = Bound{&item, nullptr, action, nullptr};
    item.PropertyChanged.Connect([this](Control& c, Property p) { Apply(c, p); });
    ApplyAll(item);
}

void QtFormBinding::CreateControl(Control& c) {
    Bound b{&c, nullptr, nullptr, nullptr};
    if (auto* label = dynamic_cast<form::Label*>(&c)) {
        auto* q = new QLabel(content_);
        q->setTextFormat(Qt::PlainText);
        q->setWordWrap(true);
        q->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        (void)label;
        b.widget = q;
    } else if (dynamic_cast<form::PictureBox*>(&c)) {
        auto* q = new QLabel(content_);
        q->setAlignment(Qt::AlignCenter);
        b.widget = q;
    } else if (dynamic_cast<form::HyperLinkLabel*>(&c)) {
        // Looks like a link; the click is taken in OnMouse.
        auto* q = new QLabel(content_);
        q->setTextFormat(Qt::PlainText);
        q->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        q->setCursor(Qt::PointingHandCursor);
        QFont font = q->font();
        font.setUnderline(true);
        q->setFont(font);
        QPalette palette = q->palette();
        palette.setColor(QPalette::WindowText, palette.color(QPalette::Link));
        q->setPalette(palette);
        b.widget = q;
    } else if (dynamic_cast<form::Line*>(&c)) {
        auto* q = new QFrame(content_);
        q->setFrameShape(c.Height == 0 ? QFrame::HLine : QFrame::VLine);
        q->setFrameShadow(QFrame::Sunken);
        b.widget = q;
    } else if (auto* box = dynamic_cast<form::TextBox*>(&c)) {
        if (box->MultiLine && box->PasswordChar == '\0') {
            auto* q = new QPlainTextEdit(content_);
            q->setTabChangesFocus(true);
            // No scroll bars, as a multi-line box has them by default; a thin margin.
            q->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
            q->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
            q->document()->setDocumentMargin(2);
            connect(q, &QPlainTextEdit::textChanged, this, [this, box, q] {
                if (syncing_) return;
                Enter([box, q] { box->SetText(EditorTextToModel(ToLatin1(q->toPlainText()))); });
            });
            byWidget_[q->viewport()] = &c;
            q->viewport()->installEventFilter(this);
            b.widget = q;
        } else {
            auto* q = new QLineEdit(content_);
            q->setMaxLength(65535);
            // A masked box shows its mask character for each one.
            if (box->PasswordChar != '\0') {
                q->setEchoMode(QLineEdit::Password);
                q->setStyleSheet(QString("QLineEdit { lineedit-password-character: %1 }")
                                     .arg(static_cast<unsigned char>(box->PasswordChar)));
            }
            // Edits that are no typed character (Delete, paste, cut, undo).
            connect(q, &QLineEdit::textEdited, this, [this, box, q](const QString& text) {
                if (syncing_) return;
                Enter([this, box, q, &text] {
                    box->SetText(ToLatin1(text));
                    PushSelection(*box, q);
                });
            });
            b.widget = q;
        }
    } else if (auto* cmd = dynamic_cast<form::CommandButton*>(&c)) {
        auto* q = new QPushButton(content_);
        q->setAutoDefault(true);  // Enter presses the button that has the focus
        const std::string picture = ButtonPictureName(c.Name());
        if (!picture.empty()) q->setProperty("picture", Latin1(picture));
        connect(q, &QPushButton::clicked, this, [this, cmd] {
            if (syncing_) return;
            Enter([this, cmd] {
                if (EnsureFocus(*cmd)) cmd->PerformClick();
            });
        });
        b.widget = q;
    } else if (auto* check = dynamic_cast<form::CheckBox*>(&c)) {
        auto* q = new QCheckBox(content_);
        // A plain box flips between checked and not; a three-state box never
        // toggles by itself (its MouseDown cycles the value).
        connect(q, &QCheckBox::clicked, this, [this, check] {
            if (syncing_ || check->ThreeState) return;
            Enter([this, check] {
                if (EnsureFocus(*check)) check->SetValue(check->Value() == 1 ? 0 : 1);
            });
            ApplyAll(*check);
        });
        b.widget = q;
    } else if (auto* list = dynamic_cast<form::ListBox*>(&c)) {
        auto* q = new QListWidget(content_);
        q->setSelectionMode(list->MultiSelect() == form::ListBox::Selection::Extended
                                ? QAbstractItemView::ExtendedSelection
                                : QAbstractItemView::SingleSelection);
        q->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        q->setUniformItemSizes(true);
        connect(q, &QListWidget::currentRowChanged, this, [this, list, q] { SchedulePush(*list, q); });
        connect(q, &QListWidget::itemSelectionChanged, this, [this, list, q] { SchedulePush(*list, q); });
        connect(q, &QListWidget::itemPressed, this, [this, list, q] { SchedulePush(*list, q); });
        connect(q, &QListWidget::itemDoubleClicked, this, [this, list] {
            if (syncing_) return;
            Enter([list] { list->DblClick.Raise(); });
        });
        b.widget = q;
    } else if (auto* bar = dynamic_cast<form::ScrollBar*>(&c)) {
        auto* q = new QScrollBar(bar->GetOrientation() == form::ScrollBar::Orientation::Horizontal ? Qt::Horizontal
                                                                                                  : Qt::Vertical,
                                 content_);
        q->setTracking(false);  // Change comes when the thumb is let go, as with the system's bars
        connect(q, &QScrollBar::valueChanged, this, [this, bar](int value) {
            if (syncing_) return;
            Enter([this, bar, value] {
                if (EnsureFocus(*bar)) bar->SetValue(value);
            });
            ApplyAll(*bar);
        });
        b.widget = q;
    } else if (auto* timer = dynamic_cast<form::Timer*>(&c)) {
        b.timer = new QTimer(this);
        connect(b.timer, &QTimer::timeout, this, [this, timer] { Enter([timer] { timer->Tick.Raise(); }); });
    } else {
        return;
    }
    if (b.widget) {
        byWidget_[b.widget] = &c;
        b.widget->installEventFilter(this);
        b.widget->setFocusPolicy(Focusable(c) ? (c.TabStop ? Qt::StrongFocus : Qt::ClickFocus) : Qt::NoFocus);
    }
    bound_[&c] = b;
    c.PropertyChanged.Connect([this](Control& ctl, Property p) { Apply(ctl, p); });
    ApplyAll(c);
}

// ---- Model to widgets -----------------------------------------------------

void QtFormBinding::Apply(Control& c, Property p) {
    const auto it = bound_.find(&c);
    if (it == bound_.end()) return;
    if (p == Property::Geometry || p == Property::Picture) {
        Syncing s(syncing_);
        ApplyGeometry(it->second);
        return;
    }
    if (auto* box = dynamic_cast<form::TextBox*>(&c)) {
        if (p == Property::Selection && quietSelection_ == &c) return;
        Syncing s(syncing_);
        if (p == Property::Text || p == Property::Selection)
            ApplyTextBox(*box, true);
        else
            ApplyAll(c);
        return;
    }
    if (auto* list = dynamic_cast<form::ListBox*>(&c)) {
        // A start adds thousands of groups one by one: the widget follows
        // once, when the event is over.
        listsPending_.insert(list);
        ScheduleFlush();
        return;
    }
    ApplyAll(c);
}

void QtFormBinding::ScheduleFlush() {
    if (flushScheduled_) return;
    flushScheduled_ = true;
    // Also for changes made where no entry point ends (a form loaded
    // before its modal loop).
    QTimer::singleShot(0, this, [this] { FlushPending(); });
}

void QtFormBinding::FlushPending() {
    flushScheduled_ = false;
    if (formPending_) {
        formPending_ = false;
        ApplyForm();
    }
    const std::set<form::ListBox*> lists = std::move(listsPending_);
    listsPending_.clear();
    for (form::ListBox* list : lists) ApplyAll(*list);
}

void QtFormBinding::ApplyGeometry(const Bound& b) {
    if (!b.widget) return;
    QRect rect = PixelGeometry(*b.control);
    // A line of no thickness in the model is drawn etched, two pixels thick.
    if (auto* line = qobject_cast<QFrame*>(b.widget); line && dynamic_cast<const form::Line*>(b.control))
        line->frameShape() == QFrame::HLine ? rect.setHeight(2) : rect.setWidth(2);
    // Our font runs wider than the one the forms were laid out for: a one-line
    // caption that does not fit runs on past its box rather than wrap out of sight.
    if (auto* label = qobject_cast<QLabel*>(b.widget); label && dynamic_cast<const form::Label*>(b.control)) {
        const QFontMetrics metrics(label->font());
        if (rect.height() < 2 * metrics.height() && !label->text().contains(QLatin1Char('\n')))
            rect.setWidth(std::max(rect.width(), metrics.horizontalAdvance(label->text())));
    }
    if (b.widget->geometry() != rect) b.widget->setGeometry(rect);
    if (auto* picture = dynamic_cast<const form::PictureBox*>(b.control)) {
        auto* label = static_cast<QLabel*>(b.widget);
        const QString name = Latin1(picture->Picture());
        if (label->pixmap().size() != rect.size() || label->property("drawn").toString() != name) {
            label->setPixmap(DrawPicture(picture->Picture(), rect.size()));
            label->setProperty("drawn", name);
        }
    }
    if (auto* button = qobject_cast<QPushButton*>(b.widget)) {
        const QString picture = button->property("picture").toString();
        const QSize size(std::max(1, rect.width() - 6), std::max(1, rect.height() - 6));
        if (!picture.isEmpty() && button->iconSize() != size) {
            button->setIcon(QIcon(DrawPicture(ToLatin1(picture), size)));
            button->setIconSize(size);
        }
    }
}

void QtFormBinding::ApplyTextBox(form::TextBox& box, bool withSelection) {
    QWidget* w = bound_[&box].widget;
    if (auto* edit = qobject_cast<QLineEdit*>(w)) {
        const QString text = Latin1(box.Text());
        const bool changed = edit->text() != text;
        if (changed) edit->setText(text);
        if (withSelection || changed) {
            // A selection shows only while the box has the focus.
            if (box.SelLength() > 0 && edit->hasFocus())
                edit->setSelection(box.SelStart(), box.SelLength());
            else
                edit->setCursorPosition(box.SelStart());
        }
        if (edit->isReadOnly() != box.Locked) edit->setReadOnly(box.Locked);
    } else if (auto* plain = qobject_cast<QPlainTextEdit*>(w)) {
        if (EditorTextToModel(ToLatin1(plain->toPlainText())) != box.Text())
            plain->setPlainText(Latin1(ModelTextToEditor(box.Text())));
        if (plain->isReadOnly() != box.Locked) plain->setReadOnly(box.Locked);
        ApplyTabStops(box, plain);
    }
}

void QtFormBinding::ApplyAll(Control& c) {
    const auto it = bound_.find(&c);
    if (it == bound_.end()) return;
    const Bound& b = it->second;
    Syncing s(syncing_);

    if (b.action) {
        auto& item = static_cast<form::MenuItem&>(c);
        QAction* a = b.action;
        if (!item.IsSeparator() && a->text() != Latin1(item.Caption())) {
            a->setText(Latin1(item.Caption()));
            if (a->menu()) a->menu()->setTitle(Latin1(item.Caption()));
        }
        a->setEnabled(item.Enabled());
        a->setVisible(item.Visible());
        if (a->menu() == nullptr && !item.IsSeparator()) {
            // Only a checked entry carries a check box, as the system's menus show it.
            if (!item.Checked()) a->setChecked(false);
            a->setCheckable(item.Checked());
            a->setChecked(item.Checked());
        }
        return;
    }
    if (b.timer) {
        auto& t = static_cast<form::Timer&>(c);
        if (!t.TimerEnabled()) {
            b.timer->stop();
        } else {
            const int interval = std::max(1, t.Interval());
            if (!b.timer->isActive() || b.timer->interval() != interval) {
                b.timer->setTimerType(interval < 20 ? Qt::PreciseTimer : Qt::CoarseTimer);
                b.timer->start(interval);
            }
        }
        return;
    }
    QWidget* w = b.widget;
    if (!w) return;
    if (w->isEnabled() != c.Enabled()) w->setEnabled(c.Enabled());
    if (w->isHidden() == c.Visible()) w->setHidden(!c.Visible());
    if (w->toolTip() != Latin1(c.ToolTipText())) w->setToolTip(Latin1(c.ToolTipText()));
    ApplyGeometry(b);

    if (auto* label = dynamic_cast<form::Label*>(&c)) {
        auto* q = static_cast<QLabel*>(w);
        if (q->text() != Latin1(label->Caption())) {
            q->setText(Latin1(label->Caption()));
            ApplyGeometry(b);
        }
    } else if (auto* link = dynamic_cast<form::HyperLinkLabel*>(&c)) {
        auto* q = static_cast<QLabel*>(w);
        if (q->text() != Latin1(link->Caption())) q->setText(Latin1(link->Caption()));
    } else if (auto* box = dynamic_cast<form::TextBox*>(&c)) {
        ApplyTextBox(*box, false);
        const QColor back = ToQColor(box->BackColor());
        const QColor fore = ToQColor(box->ForeColor());
        if (w->palette().color(QPalette::Active, QPalette::Base) != back ||
            w->palette().color(QPalette::Active, QPalette::Text) != fore) {
            QPalette palette = QApplication::palette(w);
            palette.setColor(QPalette::Active, QPalette::Base, back);
            palette.setColor(QPalette::Inactive, QPalette::Base, back);
            // A disabled box looks disabled, but a colour box keeps its colour.
            if (box->BackColor() != form::kWhite) palette.setColor(QPalette::Disabled, QPalette::Base, back);
            palette.setColor(QPalette::Active, QPalette::Text, fore);
            palette.setColor(QPalette::Inactive, QPalette::Text, fore);
            w->setPalette(palette);
        }
    } else if (auto* cmd = dynamic_cast<form::CommandButton*>(&c)) {
        auto* q = static_cast<QPushButton*>(w);
        if (q->property("picture").toString().isEmpty() && q->text() != Latin1(cmd->Caption()))
            q->setText(Latin1(cmd->Caption()));
    } else if (auto* check = dynamic_cast<form::CheckBox*>(&c)) {
        auto* q = static_cast<QCheckBox*>(w);
        if (q->text() != Latin1(check->Caption())) q->setText(Latin1(check->Caption()));
        const bool tristate = check->ThreeState || check->Value() == 2;
        if (q->isTristate() != tristate) q->setTristate(tristate);
        if (q->checkState() != CheckStateOf(check->Value())) q->setCheckState(CheckStateOf(check->Value()));
    } else if (auto* list = dynamic_cast<form::ListBox*>(&c)) {
        SyncList(*list, static_cast<QListWidget*>(w));
    } else if (auto* bar = dynamic_cast<form::ScrollBar*>(&c)) {
        auto* q = static_cast<QScrollBar*>(w);
        const bool inverted = bar->Min() > bar->Max();
        const int lo = std::min(bar->Min(), bar->Max());
        const int hi = std::max(bar->Min(), bar->Max());
        if (q->minimum() != lo || q->maximum() != hi) q->setRange(lo, hi);
        if (q->invertedAppearance() != inverted) {
            q->setInvertedAppearance(inverted);
            q->setInvertedControls(inverted);
        }
        if (q->singleStep() != bar->SmallChange) q->setSingleStep(bar->SmallChange);
        if (q->pageStep() != bar->LargeChange) q->setPageStep(bar->LargeChange);
        if (q->value() != bar->Value()) q->setValue(bar->Value());
    }
}

void QtFormBinding::ApplyTabStops(const form::TextBox& box, QPlainTextEdit* plain) {
    auto& applied = tabStops_[&box];
    if (applied.has_value() && *applied == box.TabStops) return;
    applied = box.TabStops;
    const TabLayout layout = TabStopsInPixels(box.TabStops, QFontMetricsF(plain->font()).averageCharWidth());
    QTextOption option = plain->document()->defaultTextOption();
    QList<QTextOption::Tab> tabs;
    for (double stop : layout.stops) tabs.append(QTextOption::Tab(stop, QTextOption::LeftTab));
    option.setTabs(tabs);
    if (layout.stops.empty()) option.setTabStopDistance(layout.every);
    plain->document()->setDefaultTextOption(option);
}

void QtFormBinding::SyncList(form::ListBox& list, QListWidget* w) {
    const int count = list.ListCount();
    // Only the rows between the common head and the common tail change.
    const int shown = w->count();
    int head = 0;
    while (head < count && head < shown && w->item(head)->text() == Latin1(list.List(head))) ++head;
    int tail = 0;
    while (tail < count - head && tail < shown - head &&
           w->item(shown - 1 - tail)->text() == Latin1(list.List(count - 1 - tail)))
        ++tail;
    if (head == 0 && tail == 0 && shown > 0) {
        w->clear();
    } else {
        for (int row = shown - tail - 1; row >= head; --row) delete w->takeItem(row);
    }
    if (head + tail < count) {
        QStringList added;
        added.reserve(count - head - tail);
        for (int i = head; i < count - tail; ++i) added.append(Latin1(list.List(i)));
        w->insertItems(head, added);
    }
    for (int i = 0; i < count; ++i) {
        QListWidgetItem* item = w->item(i);
        if (item->isSelected() != list.Selected(i)) item->setSelected(list.Selected(i));
    }
    const int index = list.ListIndex();
    if (w->currentRow() != index) {
        if (index < 0)
            w->selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
        else
            w->setCurrentRow(index, QItemSelectionModel::NoUpdate);
    }
    if (index >= 0) w->scrollToItem(w->item(index));
}

void QtFormBinding::ApplyForm() {
    const bool wasVisible = window_->isVisible();
    ApplyFormState();
    if (OnVisibleChanged && wasVisible != form_.Visible()) OnVisibleChanged();
}

void QtFormBinding::ApplyFormState() {
    Syncing s(syncing_);
    FormWindow* w = window_.get();
    // The caption first: a window is found by its title as it maps.
    const QString title = Latin1(form_.Caption());
    if (w->windowTitle() != title) w->setWindowTitle(title);
    if (const QString icon = Latin1(form_.Icon); w->property("icon").toString() != icon) {
        w->setWindowIcon(form_.Icon.empty() ? QIcon() : DrawIcon(form_.Icon));
        w->setProperty("icon", icon);
    }
    const form::WindowState state = form_.GetWindowState();
    if (form_.Visible() || (state == form::WindowState::Minimized && !QSystemTrayIcon::isSystemTrayAvailable())) {
        // With no tray to come back from, a form sent away stays on the task bar.
        if (state == form::WindowState::Minimized || !form_.Visible()) {
            if (!w->isVisible() || !w->isMinimized()) {
                Requested(form::WindowState::Minimized);
                w->showMinimized();
            }
        } else if (!w->isVisible() || w->isMinimized()) {
            Requested(form::WindowState::Normal);
            w->showNormal();
        }
    } else if (w->isVisible()) {
        w->hide();
    }
}

void QtFormBinding::PlaceFrame(const QPoint& at) {
    // Left and Top are the outer frame's, the window manager's decorations
    // included. Before the manager has said how wide they are (just after
    // the first show), only a frame position asks it to place the frame.
    QWindow* handle = window_->windowHandle();
    if (handle && window_->frameGeometry() == window_->geometry())
        handle->setFramePosition(at);
    else
        window_->move(at);
}

void QtFormBinding::Sync() {
    FlushPending();
    {
        Syncing s(syncing_);
        const Placed now{form_.Left, form_.Top, form_.Width, form_.Height};
        if (!placedOnce_ || now.width != placed_.width || now.height != placed_.height) {
            if (now.width > 0 && now.height > 0)
                content_->setFixedSize(TwipsToPixels(now.width), TwipsToPixels(now.height));
        }
        if (!placedOnce_ || now.left != placed_.left || now.top != placed_.top)
            PlaceFrame(QPoint(TwipsToPixels(now.left), TwipsToPixels(now.top)));
        placed_ = now;
        placedOnce_ = true;
        for (auto& entry : bound_) {
            const Bound& b = entry.second;
            if (!b.widget) continue;
            ApplyGeometry(b);
            if (Focusable(*b.control)) {
                const Qt::FocusPolicy policy = b.control->TabStop ? Qt::StrongFocus : Qt::ClickFocus;
                if (b.widget->focusPolicy() != policy) b.widget->setFocusPolicy(policy);
            }
            if (auto* box = dynamic_cast<form::TextBox*>(b.control)) {
                if (auto* edit = qobject_cast<QLineEdit*>(b.widget); edit && edit->isReadOnly() != box->Locked)
                    edit->setReadOnly(box->Locked);
                if (auto* plain = qobject_cast<QPlainTextEdit*>(b.widget)) ApplyTabStops(*box, plain);
            }
        }
    }
    ScheduleFocusSync();
}

void QtFormBinding::ScheduleFocusSync() {
    if (focusSyncPending_) return;
    focusSyncPending_ = true;
    QTimer::singleShot(0, this, [this] {
        focusSyncPending_ = false;
        SyncFocus();
    });
}

void QtFormBinding::SyncFocus() {
    Control* active = form_.ActiveControl();
    if (!active) return;
    const auto it = bound_.find(active);
    if (it == bound_.end() || !it->second.widget) return;
    QWidget* w = it->second.widget;
    if (!w->isVisibleTo(window_.get()) || !w->isEnabled() || w->focusPolicy() == Qt::NoFocus) return;
    if (window_->focusWidget() == w) return;
    Syncing s(syncing_);
    w->setFocus(Qt::OtherFocusReason);
}

// ---- User to model ----------------------------------------------------------

void QtFormBinding::Enter(const std::function<void()>& action) { RunEntryPoint(action); }

bool QtFormBinding::EnsureFocus(Control& control) {
    if (refused_ == &control) return false;
    if (form_.ActiveControl() == &control) return true;
    const auto it = bound_.find(&control);
    if (it == bound_.end() || !it->second.widget || it->second.widget->focusPolicy() == Qt::NoFocus) return true;
    if (form_.SetFocusTo(control)) return true;
    ScheduleFocusSync();
    return false;
}

void QtFormBinding::OnFocusIn(Control& control) {
    if (syncing_) return;
    if (form_.ActiveControl() == &control) {
        refused_ = nullptr;
        return;
    }
    bool moved = true;
    Enter([this, &control, &moved] { moved = form_.SetFocusTo(control); });
    refused_ = moved ? nullptr : &control;
    // A Validate that kept the focus: it goes back after this event.
    if (!moved) ScheduleFocusSync();
}

void QtFormBinding::PushSelection(form::TextBox& box, QLineEdit* edit) {
    const int start = edit->hasSelectedText() ? edit->selectionStart() : edit->cursorPosition();
    const int length = edit->hasSelectedText() ? static_cast<int>(edit->selectedText().size()) : 0;
    quietSelection_ = &box;
    box.SetSelection(start, length);
    quietSelection_ = nullptr;
}

void QtFormBinding::SchedulePush(form::ListBox& list, QListWidget* widget) {
    if (syncing_ || pushPending_.count(&list)) return;
    pushPending_.insert(&list);
    // One push for the several signals one click gives, once the list has settled.
    QTimer::singleShot(0, this, [this, &list, widget] {
        pushPending_.erase(&list);
        PushList(list, widget);
    });
}

void QtFormBinding::PushList(form::ListBox& list, QListWidget* w) {
    Enter([this, &list, w] {
        const int count = w->count();
        if (count != list.ListCount()) return;
        const int current = w->currentRow();
        std::vector<bool> selected(static_cast<std::size_t>(count));
        bool selectionChanged = false;
        int selectedCount = 0;
        for (int i = 0; i < count; ++i) {
            selected[static_cast<std::size_t>(i)] = w->item(i)->isSelected();
            selectionChanged = selectionChanged || selected[static_cast<std::size_t>(i)] != list.Selected(i);
            selectedCount += selected[static_cast<std::size_t>(i)] ? 1 : 0;
        }
        const bool currentSelected = current >= 0 && selected[static_cast<std::size_t>(current)];
        // The view moves only its cursor when it takes the focus: no click.
        if (!currentSelected && !selectionChanged) return;
        if (!EnsureFocus(list)) return;
        if (list.MultiSelect() == form::ListBox::Selection::Single) {
            // A click beside the items takes nothing away from a single list.
            if (currentSelected) list.ClickItem(current);
            return;
        }
        if (currentSelected && selectedCount == 1) {
            list.ClickItem(current);
            return;
        }
        {
            Syncing s(syncing_);
            for (int i = 0; i < count; ++i)
                if (list.Selected(i) != selected[static_cast<std::size_t>(i)])
                    list.SetSelected(i, selected[static_cast<std::size_t>(i)]);
        }
        if (current >= 0) list.SetListIndex(current);
    });
    ApplyAll(list);  // shows what the model made of it, and undoes a refused click
}

bool QtFormBinding::IsMenuShortcut(const QKeyEvent* event) const {
    const QKeySequence pressed(event->keyCombination());
    return std::any_of(shortcuts_.begin(), shortcuts_.end(), [&](const QKeySequence& s) { return s == pressed; });
}

namespace {

// The key codes of the system for the keys a handler looks at.
int KeyCodeOf(const QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter: return 13;
        case Qt::Key_Escape: return 27;
        case Qt::Key_End: return 35;
        case Qt::Key_Home: return 36;
        case Qt::Key_Left: return 37;
        case Qt::Key_Up: return 38;
        case Qt::Key_Right: return 39;
        case Qt::Key_Down: return 40;
        case Qt::Key_F2: return 113;
        default: return event->key() < 256 ? event->key() : 256;
    }
}

}  // namespace

bool QtFormBinding::OnKeyDown(QWidget* widget, QKeyEvent* event) {
    if (OnFormKeyDown) {
        const int code = KeyCodeOf(event);
        int key = code;
        Enter([this, &key] { OnFormKeyDown(key); });
        if (key != code) return true;
        // The handler may have closed the form.
        if (!form_.Visible()) return true;
    }
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool escape = event->key() == Qt::Key_Escape;
    if (!(enter || escape) || (event->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return false;
    // A button with the focus takes Enter itself.
    if (enter && qobject_cast<QPushButton*>(widget)) return false;
    for (auto& entry : bound_) {
        auto* button = dynamic_cast<form::CommandButton*>(entry.second.control);
        if (!button || !button->Visible() || !button->Enabled()) continue;
        if ((enter && button->Default) || (escape && button->Cancel)) {
            Enter([button] { button->PerformClick(); });
            return true;
        }
    }
    return false;
}

bool QtFormBinding::OnKeyPress(Control* control, QWidget* widget, QKeyEvent* event) {
    const QList<uint> codes = event->text().toUcs4();
    if (codes.size() != 1) return false;
    int code = KeyPressCode(static_cast<char32_t>(codes.front()));
    if (code == kKeyToWidget) return false;
    if (code == kKeyDropped) return true;

    if (OnFormKeyPress) {
        int key = code;
        Enter([this, &key] { OnFormKeyPress(key); });
        if (key == 0) return true;
        code = key;
    }
    if (!control) return false;

    if (auto* check = dynamic_cast<form::CheckBox*>(control); check && check->ThreeState) {
        if (code != ' ') return false;
        Enter([this, check] {
            if (EnsureFocus(*check)) check->MouseDown.Raise();
        });
        ApplyAll(*check);
        return true;
    }
    auto* box = dynamic_cast<form::TextBox*>(control);
    if (!box) return false;
    if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
        int result = 0;
        Enter([this, box, edit, code, &result] {
            PushSelection(*box, edit);
            result = box->TypeKey(code);
        });
        {
            Syncing s(syncing_);
            ApplyTextBox(*box, true);
        }
        // Control keys that change no text here (copy, paste, Enter) go on to the widget.
        return !(result == code && code < 32 && code != 8);
    }
    if (auto* plain = qobject_cast<QPlainTextEdit*>(widget)) {
        int key = code;
        Enter([box, &key] { box->KeyPress.Raise(key); });
        if (key == code) return false;  // the widget types it
        if (key >= 32 && key <= 255) plain->insertPlainText(QString(QChar(key)));
        return true;
    }
    return false;
}

bool QtFormBinding::OnMouse(Control& control, QEvent* event) {
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (auto* check = dynamic_cast<form::CheckBox*>(&control); check && check->ThreeState) {
        if (event->type() == QEvent::MouseButtonPress && mouse->button() == Qt::LeftButton) {
            // The focus moved (and its Validate ran) before this press came here.
            Enter([this, check] {
                if (EnsureFocus(*check)) check->MouseDown.Raise();
            });
            ApplyAll(*check);
        }
        return true;  // the box never toggles by itself
    }
    if (auto* link = dynamic_cast<form::HyperLinkLabel*>(&control)) {
        // The link opens itself: a release of the left button over it.
        const QWidget* widget = WidgetOf(control);
        if (event->type() == QEvent::MouseButtonRelease && mouse->button() == Qt::LeftButton &&
            widget->rect().contains(mouse->position().toPoint()) && !link->Address().empty())
            QDesktopServices::openUrl(QUrl(Latin1(link->Address())));
        return false;
    }
    if (auto* box = dynamic_cast<form::TextBox*>(&control)) {
        if (event->type() == QEvent::MouseButtonDblClick && mouse->button() == Qt::LeftButton)
            Enter([box] { box->DblClick.Raise(); });
    }
    return false;
}

bool QtFormBinding::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window_.get()) {
        // Keys that a bound control saw were previewed there already.
        if (event->type() == QEvent::KeyPress && OnFormKeyPress && !syncing_ &&
            !byWidget_.count(QApplication::focusWidget()))
            return OnKeyPress(nullptr, window_.get(), static_cast<QKeyEvent*>(event));
        return false;
    }
    const auto it = byWidget_.find(watched);
    if (it == byWidget_.end()) return false;
    Control& control = *it->second;
    auto* widget = static_cast<QWidget*>(watched);
    switch (event->type()) {
        case QEvent::FocusIn: {
            OnFocusIn(control);
            // The box's own focus handling (select all on Tab) runs after
            // this; the model's selection is shown once it has. A click
            // places the caret itself.
            auto* box = dynamic_cast<form::TextBox*>(&control);
            if (box && qobject_cast<QLineEdit*>(widget) &&
                static_cast<QFocusEvent*>(event)->reason() != Qt::MouseFocusReason) {
                QTimer::singleShot(0, this, [this, box] {
                    Syncing s(syncing_);
                    ApplyTextBox(*box, true);
                });
            }
            return false;
        }
        case QEvent::ShortcutOverride:
            // A menu's shortcut wins over a text box's own use of the key.
            if (IsMenuShortcut(static_cast<QKeyEvent*>(event))) {
                event->ignore();
                return true;
            }
            return false;
        case QEvent::KeyPress:
            if (syncing_) return false;
            if (OnKeyDown(widget, static_cast<QKeyEvent*>(event))) return true;
            return OnKeyPress(&control, widget, static_cast<QKeyEvent*>(event));
        case QEvent::KeyRelease: {
            auto* check = dynamic_cast<form::CheckBox*>(&control);
            return check && check->ThreeState && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space;
        }
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
            if (syncing_) return false;
            return OnMouse(control, event);
        default:
            return false;
    }
}

void QtFormBinding::OnCloseBox() {
    bool cancel = false;
    Enter([this, &cancel] {
        if (OnQueryUnload)
            OnQueryUnload(cancel);
        else
            form_.SetVisible(false);
    });
}

namespace {

// How long the window system may take to report a state the binding asked for.
constexpr std::int64_t kStateReportMs = 2000;

std::int64_t NowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

}  // namespace

void QtFormBinding::Requested(form::WindowState state) { requests_.push_back({state, NowMs()}); }

void QtFormBinding::OnUserWindowState() {
    if (syncing_) return;
    const bool minimized = window_->isMinimized();
    // The window manager reports the binding's own requests, often late
    // (a minimise asked for just before a hide comes after the form was
    // restored): such a report is no user's, and the window goes back to
    // the model's state.
    const form::WindowState now = minimized ? form::WindowState::Minimized : form::WindowState::Normal;
    const std::int64_t oldest = NowMs() - kStateReportMs;
    std::erase_if(requests_, [oldest](const Request& r) { return r.at < oldest; });
    const auto echo = std::find_if(requests_.begin(), requests_.end(), [now](const Request& r) { return r.state == now; });
    if (echo != requests_.end()) {
        requests_.erase(requests_.begin(), echo + 1);
        QTimer::singleShot(0, this, [this] { ApplyFormState(); });
        return;
    }
    requests_.clear();  // what the user did replaces what was asked before
    const form::WindowState state = form_.GetWindowState();
    if (minimized && state != form::WindowState::Minimized) {
        Enter([this] { form_.SetWindowState(form::WindowState::Minimized); });
    } else if (!minimized && state == form::WindowState::Minimized && window_->isVisible()) {
        // Brought back from the task bar.
        Enter([this] {
            form_.SetWindowState(form::WindowState::Normal);
            form_.SetVisible(true);
        });
    }
}

void QtFormBinding::OnUserMove() {
    if (!window_->isVisible()) return;
    const QPoint at = window_->pos();
    if (TwipsToPixels(form_.Left) != at.x()) form_.Left = PixelsToTwips(at.x());
    if (TwipsToPixels(form_.Top) != at.y()) form_.Top = PixelsToTwips(at.y());
    placed_.left = form_.Left;
    placed_.top = form_.Top;
}

}  // namespace ostrivane::desktop
