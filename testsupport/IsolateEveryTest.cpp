// SPDX-License-Identifier: GPL-3.0-or-later
// Linked into every test binary: each test runs in an Isolation made before its fixture and
// ended after it, so nothing a test does to the environment reaches the next one, and the run
// as a whole (suite set-up included) never sees the user's own.
#include "Isolation.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class IsolateEveryTest : public ::testing::EmptyTestEventListener {
    void OnTestProgramStart(const ::testing::UnitTest&) override { run_ = std::make_unique<testsupport::Isolation>(); }
    void OnTestProgramEnd(const ::testing::UnitTest&) override { run_.reset(); }
    void OnTestStart(const ::testing::TestInfo&) override { test_ = std::make_unique<testsupport::Isolation>(); }
    void OnTestEnd(const ::testing::TestInfo&) override { test_.reset(); }

    std::unique_ptr<testsupport::Isolation> run_, test_;
};

const bool registered = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new IsolateEveryTest);
    return true;
}();

}  // namespace
