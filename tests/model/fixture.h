// What the tests of the model share: the agent with the module in it, on a scripted device that is there as long as a
// suite runs.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "agent.h"
#include "varbinds.h"

class Model : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        device_ = std::make_unique<ScriptedDevice>();
        set_up(*device_);
        start_agent();
    }
    static void TearDownTestSuite() { device_.reset(); }

    static inline std::unique_ptr<ScriptedDevice> device_;
};
