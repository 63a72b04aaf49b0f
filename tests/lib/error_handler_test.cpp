#include "lib/error_handler.hpp"

#include <gtest/gtest.h>

#include <regex>

#include "dialogs/message_box.hpp"
#include "fakes/fake_platform.hpp"
#include "lib/file_ops.hpp"
#include "lib/file_test.hpp"
#include "lib/path_basics.hpp"
#include "support/run_time_error.hpp"
#include "support/temp_dir.hpp"

namespace ostrivane {
namespace {

constexpr std::int32_t kBase = kObjectErrorBase;

TEST(ClassifyError, ByDistanceFromTheObjectErrorBase) {
    const struct { std::int32_t number; ErrorClass errorClass; const char* text; } rows[] = {
        {0, ErrorClass::None, ""},
        {kBase + 5, ErrorClass::Sql, "(&H80040005)(SQL 5) "},
        {kBase - 1, ErrorClass::Sql, "(&H8003FFFF)(SQL -1) "},
        {kBase + 999, ErrorClass::Sql, "(&H800403E7)(SQL 999) "},
        {kBase + 1000, ErrorClass::App, "(&H800403E8)(AppDef 1000) "},
        {kBase + 2000, ErrorClass::App, "(&H800407D0)(AppDef 2000) "},
        {kBase + 65535, ErrorClass::App, "(&H8004FFFF)(AppDef 65535) "},
        {kBase + 65536, ErrorClass::Sys, "(-2147155968) "},
        {53, ErrorClass::Sys, "(53) "},
        {262143, ErrorClass::Sys, "(262143) "},
    };
    for (const auto& r : rows) {
        const ErrorClassText got = ClassifyError(r.number);
        EXPECT_EQ(got.errorClass, r.errorClass) << r.number;
        EXPECT_EQ(got.text, r.text) << r.number;
    }
    EXPECT_EQ(ErrorOf([] { ClassifyError(262144); }), kOverflow);
}

class ErrorHandlerTest : public ::testing::Test {
protected:
    ErrorHandlerTest() {
        lib_AttachErrorBoxes(&desktop, &dialogs, "Ostrivane");
        lib_SetDebugSink([this](const std::string& line) { traced.push_back(line); });
        desktop.whileModal = [this](form::Form&) { shown.push_back(MessageText); };
        MessageText = "untouched";
    }
    ~ErrorHandlerTest() override {
        lib_AttachErrorBoxes(nullptr, nullptr, "");
        lib_SetDebugSink(nullptr);
        lib_TrapOff = lib_TraceOn = lib_ErrorDetailOn = false;
        BusyState = false;
    }
    // The request without the date behind its type and seconds.
    static std::string Undated(const std::string& request, std::time_t before) {
        for (const std::time_t t : {before, std::time(nullptr)}) {
            const std::string date = GeneralDateText(t);
            if (request.compare(5, date.size(), date) == 0) return request.substr(0, 5) + request.substr(5 + date.size());
        }
        return "no date: " + request;
    }
    fakes::FakeDesktop desktop;
    fakes::FakeDialogs dialogs;
    Lines shown, traced;
};

TEST_F(ErrorHandlerTest, ShowsAWarningOnlyAboveAppError1000) {
    const struct { std::int32_t number; bool detail; const char* extra; std::int16_t seconds; const char* box; } rows[] = {
        {53, false, "", 0, "1   0 The application has encountered an error"},
        {53, true, "", 0, "1   0 An error has occurred in lib_GetNextFile\r\n\r\n(53) File not found"},
        {kBase + 5, true, "  ", 3, "1   3 An error has occurred in lib_GetNextFile\r\n\r\n(&H80040005)(SQL 5) File not found"},
        {kBase + 1000, true, "C:/x", 0,
         "1   0 An error has occurred in lib_GetNextFile\r\n\r\n(&H800403E8)(AppDef 1000) File not found\r\nC:/x"},
        {kBase + 2000, false, "", 12, "2  12 The application has encountered an error"},
        {0, true, "", 0, "1   0 An error has occurred in lib_GetNextFile\r\n\r\nFile not found"},
    };
    for (const auto& r : rows) {
        shown.clear();
        desktop.calls.clear();
        lib_ErrorDetailOn = r.detail;
        const std::time_t before = std::time(nullptr);
        lib_ErrorHandler("lib_GetNextFile", r.number, "File not found", true, r.extra, r.seconds);
        ASSERT_EQ(shown.size(), 1u) << r.box;
        EXPECT_EQ(Undated(shown[0], before), r.box);
        EXPECT_EQ(desktop.calls, (Lines{"Beep", "ShowModal frmMsgBox"}));
    }
    EXPECT_TRUE(dialogs.asked.empty());
}

TEST_F(ErrorHandlerTest, ChangeDirTellsPathNotFound) {
    lib_ErrorDetailOn = true;
    TempDir dir;
    const std::time_t before = std::time(nullptr);
    EXPECT_FALSE(lib_ChangeDir(desktop, dir.file("gone")));
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(Undated(shown[0], before),
              "1   0 An error has occurred in Vexil.lib_ChangeDir\r\n\r\n(76) Path not found\r\n" + dir.file("gone"));
}

TEST_F(ErrorHandlerTest, SilentReportsAndFailuresOnTheWay) {
    lib_ErrorDetailOn = true;
    lib_ErrorHandler("Vexil.lib_KillFile", kBase + 2000, "x", false, "File:/a", 0);
    EXPECT_TRUE(desktop.calls.empty() && dialogs.asked.empty());
    EXPECT_EQ(MessageText, "untouched");

    // An error in the box, or in the report's own arithmetic, ends in the plain box.
    desktop.whileModal = [](form::Form&) { Raise(kPermissionDenied); };
    const struct { std::int32_t number; bool show; const char* tail; } rows[] = {
        {53, true, "(70) Permission denied"}, {262144, false, "(6) Overflow"}};
    for (const auto& r : rows) {
        dialogs.msgBoxAnswers.push_back(vbOK);
        EXPECT_EQ(ErrorOf([&] { lib_ErrorHandler("src", r.number, "d", r.show, "", 0); }), 0);
        EXPECT_EQ(dialogs.asked.back().prompt,
                  std::string("Fatal Error: the system encountered an error within the error handler\r\n") + r.tail);
        EXPECT_EQ(dialogs.asked.back().flags, vbCritical);
    }
    EXPECT_EQ(dialogs.asked.size(), 2u);
    lib_TrapOff = true;
    EXPECT_EQ(ErrorOf([] { lib_ErrorHandler("src", 53, "d", true, "", 0); }), kPermissionDenied);
    EXPECT_EQ(dialogs.asked.size(), 2u);
}

TEST_F(ErrorHandlerTest, TracedFramesDepthTraceAndRaiseAgain) {
    lib_TraceOn = true;
    bool busyInside = false;
    const std::string failure = FailureOf([&] {
        lib_RunTraced("Vexil.outer", "Path:/x", [&] {
            lib_RunTraced("Vexil.inner", "", [&] { busyInside = BusyState && lib_CallDepth == 2; });
            Raise(kPathFileAccessError);
        });
    });
    EXPECT_EQ(failure, "75 Vexil.outer: Path/File access error");
    EXPECT_TRUE(busyInside);
    EXPECT_FALSE(BusyState);
    EXPECT_EQ(lib_CallDepth, 0);
    ASSERT_EQ(traced.size(), 2u);
    EXPECT_TRUE(std::regex_match(traced[0], std::regex(R"(;\(2\)\d+;;;Vexil\.inner)"))) << traced[0];
    EXPECT_TRUE(std::regex_match(traced[1], std::regex(R"(;\(1\)\d+;;Vexil\.outer)"))) << traced[1];
    lib_DebugTrace("x", 0, true);
    EXPECT_EQ(traced.size(), 2u);

    // The routines that run in the frame; a busy state found is given back.
    TempDir dir;
    BusyState = true;
    traced.clear();
    lib_MakePath(dir.path().string());
    lib_KillFile(dir.file("none"), true);
    form::ListBox list(nullptr, "lstGroups");
    lib_SelectFindInList(list, "x", false);
    ASSERT_EQ(traced.size(), 3u);
    const char* names[] = {"Vexil.lib_MakePath", "Vexil.lib_KillFile", "Vexil.lib_SelectFindInList"};
    for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(traced[i].ends_with(std::string(";;") + names[i])) << traced[i];
    EXPECT_TRUE(BusyState);

    lib_TrapOff = true;
    EXPECT_EQ(FailureOf([] { lib_RunTraced("Vexil.outer", "", [] { Raise(kPathNotFound); }); }),
              "76 Ostrivane: Path not found");
    EXPECT_EQ(lib_CallDepth, 0);
}

}  // namespace
}  // namespace ostrivane
