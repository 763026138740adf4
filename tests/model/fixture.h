// What the tests of the model share: the agent with the module, on a scripted device that lives as long as a suite
// runs.
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
