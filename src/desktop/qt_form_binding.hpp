// Mirrors a form of the core into a top-level Qt window. The model is the
// truth: its property changes reach the widgets, and the user's actions go
// back through the model's setters and events, each as an entry point.
// The binding holds no rule of the program.
#pragma once

#include <QKeySequence>
#include <QObject>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "form/controls.hpp"
#include "form/form.hpp"

class QAction;
class QEvent;
class QKeyEvent;
class QPoint;
class QLineEdit;
class QListWidget;
class QMenu;
class QMenuBar;
class QPlainTextEdit;
class QTimer;
class QWidget;

namespace ostrivane::desktop {

class FormWindow;

class QtFormBinding final : public QObject {
public:
    // menuBar: the form's menus in order (none for a dialog).
    explicit QtFormBinding(form::Form& form, std::vector<form::MenuItem*> menuBar = {});
    ~QtFormBinding() override;
    QtFormBinding(const QtFormBinding&) = delete;
    QtFormBinding& operator=(const QtFormBinding&) = delete;

    form::Form& Model() const { return form_; }
    QWidget* Window() const;
    // The widget that shows a control; null for timers, menus and strangers.
    QWidget* WidgetOf(const form::Control& control) const;

    // The close box; a cancel keeps the window. Without it the form hides.
    std::function<void(bool& cancel)> OnQueryUnload;
    // A key typed anywhere on the form, before its control sees it
    // (0 drops it).
    std::function<void(int& key)> OnFormKeyPress;
    // A key going down in a control of the form, as a key code (13 Enter,
    // 37 Left, 113 F2, ...), before the control sees it. A handler that
    // changes the code keeps the key from the control.
    std::function<void(int& keyCode)> OnFormKeyDown;
    // Told each time the model's form shows or hides.
    std::function<void()> OnVisibleChanged;

    // The window's caption, visibility and state as the model has them.
    void ApplyFormState();
    // Brings over what the model changes without an event: places and sizes,
    // and where the focus is.
    void Sync();

    static QtFormBinding* For(const form::Form& form);
    static void SyncAll();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    friend class FormWindow;

    struct Bound {
        form::Control* control = nullptr;
        QWidget* widget = nullptr;
        QAction* action = nullptr;
        QTimer* timer = nullptr;
    };

    void CreateControl(form::Control& control);
    void CreateMenu(QMenu* parent, QMenuBar* bar, form::MenuItem& item);
    void Apply(form::Control& control, form::Property property);
    void ApplyAll(form::Control& control);
    void ApplyForm();
    void ApplyGeometry(const Bound& b);
    void PlaceFrame(const QPoint& at);
    void ApplyTextBox(form::TextBox& box, bool withSelection);
    void ApplyTabStops(const form::TextBox& box, QPlainTextEdit* plain);
    void SyncList(form::ListBox& list, QListWidget* widget);
    void ScheduleFlush();
    void FlushPending();
    void SchedulePush(form::ListBox& list, QListWidget* widget);
    void PushList(form::ListBox& list, QListWidget* widget);
    void PushSelection(form::TextBox& box, QLineEdit* edit);
    void SyncFocus();
    void ScheduleFocusSync();

    // Runs a user action on the model: one entry point, then the window
    // follows the model.
    void Enter(const std::function<void()>& action);
    // The focus moves to control before it acts; false when a Validate kept
    // it where it was.
    bool EnsureFocus(form::Control& control);

    // Called by the window and the widget filter.
    void OnCloseBox();
    void OnUserWindowState();
    // The window-state requests of the binding whose report may still come.
    void Requested(form::WindowState state);
    void OnUserMove();
    void OnFocusIn(form::Control& control);
    bool OnKeyPress(form::Control* control, QWidget* widget, QKeyEvent* event);
    bool OnMouse(form::Control& control, QEvent* event);
    bool IsMenuShortcut(const QKeyEvent* event) const;
    bool OnKeyDown(QWidget* widget, QKeyEvent* event);

    form::Form& form_;
    std::unique_ptr<FormWindow> window_;
    QWidget* content_ = nullptr;
    std::map<const form::Control*, Bound> bound_;
    std::map<const QObject*, form::Control*> byWidget_;
    std::vector<QKeySequence> shortcuts_;
    int syncing_ = 0;                   // model to widgets: the widgets' signals are not the user's
    form::Control* refused_ = nullptr;  // the control whose focus a Validate refused last
    const form::Control* quietSelection_ = nullptr;  // its selection comes from the widget
    std::set<const form::ListBox*> pushPending_;
    std::set<form::ListBox*> listsPending_;  // changed in the model, shown once the event is over
    bool flushScheduled_ = false;  // FlushPending is posted
    bool formPending_ = false;  // caption, visibility or state changed in the model
    struct Request {
        form::WindowState state;
        std::int64_t at;  // ms of a monotonic clock
    };
    std::vector<Request> requests_;
    bool focusSyncPending_ = false;
    std::map<const form::TextBox*, std::optional<std::vector<std::int32_t>>> tabStops_;  // as last applied
    struct Placed {
        int left = 0, top = 0, width = 0, height = 0;
    } placed_;  // the form's place and size as last applied, in twips
    bool placedOnce_ = false;
};

}  // namespace ostrivane::desktop
