// Fakes of the platform: questions answered from a script and recorded,
// overlay calls recorded, and a manual clock for timers.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "form/controls.hpp"
#include "platform/dialogs.hpp"
#include "platform/overlay.hpp"

namespace ostrivane::fakes {

struct Question {
    enum Kind { kMsgBox, kInputBox, kChooseColor } kind;
    std::string prompt;
    int flags = 0;
    std::string title;
    std::string proposal;
    std::optional<TwipPoint> position;
    std::int32_t colour = 0;
};

class FakeDialogs final : public Dialogs {
public:
    // Scripted answers, taken in order; a question with no answer left fails the test.
    std::deque<int> msgBoxAnswers;
    std::deque<std::string> inputBoxAnswers;
    std::deque<std::int32_t> colourAnswers;
    std::vector<Question> asked;

    int MsgBox(const std::string& prompt, int flags, const std::string& title) override {
        asked.push_back({Question::kMsgBox, prompt, flags, title, {}, std::nullopt, 0});
        return Take(msgBoxAnswers, "message box: " + prompt);
    }
    std::string InputBox(const std::string& prompt, const std::string& title, const std::string& proposal,
                         std::optional<TwipPoint> position) override {
        asked.push_back({Question::kInputBox, prompt, 0, title, proposal, position, 0});
        return Take(inputBoxAnswers, "input box: " + prompt);
    }
    std::int32_t ChooseColor(std::int32_t colour) override {
        asked.push_back({Question::kChooseColor, {}, 0, {}, {}, std::nullopt, colour});
        return Take(colourAnswers, "colour chooser");
    }
    bool AllAnswersUsed() const { return msgBoxAnswers.empty() && inputBoxAnswers.empty() && colourAnswers.empty(); }

private:
    template <class T>
    static T Take(std::deque<T>& answers, const std::string& what) {
        if (answers.empty()) throw std::logic_error("unexpected question, no scripted answer: " + what);
        T answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

class FakeOverlay final : public Overlay {
public:
    std::vector<std::string> calls;
    void ShowMarker(int row) override { calls.push_back("ShowMarker " + std::to_string(row)); }
    void ShowAllMarkers() override { calls.push_back("ShowAllMarkers"); }
    void DestroyMarkerWindows(int row) override { calls.push_back("DestroyMarkerWindows " + std::to_string(row)); }
    void DestroyAllMarkerWindows() override { calls.push_back("DestroyAllMarkerWindows"); }
};

// Fires due timer ticks in time order. A timer enabled at time t first
// ticks at t + Interval; disabling it forgets its schedule.
class ManualClock {
public:
    void Watch(form::Timer& timer) { timers_.push_back({&timer, -1}); }

    long Now() const { return now_; }

    // Advances the clock by ms, ticking each enabled timer whenever it is due.
    void Advance(long ms) {
        const long end = now_ + ms;
        for (;;) {
            Schedule();
            Entry* next = nullptr;
            for (Entry& e : timers_)
                if (e.due >= 0 && e.due <= end && (!next || e.due < next->due)) next = &e;
            if (!next) break;
            now_ = next->due;
            next->due = now_ + Interval(*next->timer);
            next->timer->Tick.Raise();
        }
        now_ = end;
        Schedule();
    }

private:
    struct Entry {
        form::Timer* timer;
        long due;
    };
    static long Interval(const form::Timer& t) { return t.Interval() > 0 ? t.Interval() : 1; }
    void Schedule() {
        for (Entry& e : timers_) {
            if (!e.timer->TimerEnabled())
                e.due = -1;
            else if (e.due < 0)
                e.due = now_ + Interval(*e.timer);
        }
    }
    std::vector<Entry> timers_;
    long now_ = 0;
};

}  // namespace ostrivane::fakes
