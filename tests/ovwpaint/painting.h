#ifndef OVWPAINT_TEST_PAINTING_H
#define OVWPAINT_TEST_PAINTING_H

/// @file
/// The program as a whole, for its tests.

#include "inkread.h"
#include "pngread.h"
#include "program.h"

#include <gtest/gtest.h>

namespace ovwpaint::test {

struct Outcome {
    int code = 0;
    std::string output;
    std::string errors;
};

inline Outcome runWith(std::vector<std::string> arguments) {
    std::vector<const char*> argv = {"ovwpaint"};
    for (const std::string& argument : arguments)
        argv.push_back(argument.c_str());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Outcome outcome;
    outcome.code = runProgram(static_cast<int>(argv.size()), argv.data());
    outcome.output = testing::internal::GetCapturedStdout();
    outcome.errors = testing::internal::GetCapturedStderr();
    return outcome;
}

/// A folder with a recording: a line with force, and a tap at (60, 40).
class OvwPaint : public testing::Test {
protected:
    std::string ink(const std::string& traces) {
        return m_folder.write("strokes.inkml",
                              inkWith(R"(<channel name="X"/><channel name="Y"/><channel name="F" max="1"/>)", traces));
    }

    Picture draw(std::vector<std::string> more = {}) {
        std::vector<std::string> arguments = {"draw", m_strokes, "-o", m_picture, "--quiet"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome result = runWith(arguments);
        EXPECT_EQ(result.code, cnExitDone) << result.errors;
        EXPECT_EQ(result.errors, "");
        return readPng(m_picture);
    }

    TemporaryFolder m_folder;
    const std::string m_picture = m_folder.path("out.png");
    std::string m_strokes = ink("<trace>10 10 1, 40 12 1, 90 10 1</trace><trace>60 40 1</trace>");
};

} // namespace ovwpaint::test

#endif // OVWPAINT_TEST_PAINTING_H
