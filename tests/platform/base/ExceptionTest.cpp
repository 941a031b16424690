#include <base/Exception.h>

#include <gtest/gtest.h>

#include <string>

namespace {

struct JoinCase {
    const char* name;
    const wchar_t* userText;
    const char* detail;
    const char* what;
};

// what() is the one line a host prints; the user text and the detail keep their own wording.
TEST(Exception, WhatJoinsUserTextAndDetailWithOneColonAndNoDoubledMarks)
{
    const JoinCase cases[] = {
        {"Period", L"The document has no entity with that id.", "#7", "The document has no entity with that id: #7"},
        {"TwoExclamations", L"The file is corrupt! The operation will be aborted!", "bad.kxd: Not a zip archive",
            "The file is corrupt! The operation will be aborted: bad.kxd: Not a zip archive"},
        {"ColonAndBlank", L"Cannot open: ", "x.xml", "Cannot open: x.xml"},
        {"NoMark", L"No open material library has this name", "Steel", "No open material library has this name: Steel"},
        {"NoDetailKeepsTheMark", L"The document could not be saved.", "", "The document could not be saved."},
        {"OnlyPunctuation", L"...", "detail", ": detail"},
        {"EmptyUserText", L"", "detail", ": detail"},
        {"Umlaut", L"Die Datei ist beschädigt.", "ä.kxd", "Die Datei ist beschädigt: ä.kxd"},
    };
    for (const JoinCase& c : cases) {
        SCOPED_TRACE(c.name);
        const Kx::Exception error(c.userText, c.detail);
        EXPECT_EQ(std::string(error.what()), c.what);
        EXPECT_EQ(error.userText(), c.userText);
        EXPECT_EQ(error.detail(), c.detail);
    }
}

} // namespace
