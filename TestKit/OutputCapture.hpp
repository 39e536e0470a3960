// SPDX-License-Identifier: MIT
/// @file OutputCapture.hpp
/// What the test program itself prints.
#pragma once

#include <string>

namespace dorn::testkit {

/// Takes what this process writes to standard output and standard error while it lives, so that a test can compare it.
///
///     OutputCapture output;
///     EXPECT_EQ(ServiceUnderTest(greeter, {"-h"}).waitForEnd(), 1U);
///     EXPECT_EQ(output.standardError(), "Usage:\nDornGreeterExe [options]\n\n...");
class OutputCapture {
public:
    /// @throws std::system_error when descriptors have run out.
    OutputCapture();
    ~OutputCapture();
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;

    /// What has been written so far.
    std::string standardOutput() const { return m_output.text(); }
    /// What has been written so far.
    std::string standardError() const { return m_error.text(); }

private:
    /// One descriptor of the process, led elsewhere.
    class Diversion {
    public:
        explicit Diversion(int descriptor);
        ~Diversion();
        Diversion(const Diversion&) = delete;
        Diversion& operator=(const Diversion&) = delete;
        std::string text() const;

    private:
        const int m_descriptor;
        const int m_original;
        const int m_file;
    };

    Diversion m_output;
    Diversion m_error;
};

} // namespace dorn::testkit
