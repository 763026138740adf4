// Gives each test a process of its own, because pauses and the library's copy of the store are kept per process.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace {

// The status of this program run for one test alone.
int run_alone(const testing::TestInfo& test) {
    const std::string filter = std::string("--gtest_filter=") + test.test_suite_name() + "." + test.name();
    const pid_t child = fork();
    if (child == 0) {
        execl("/proc/self/exe", "test", filter.c_str(), nullptr);
        _exit(127);
    }
    int status = -1;
    while (waitpid(child, &status, 0) < 0) {
    }
    return status;
}

class OneByOne : public testing::EmptyTestEventListener {
    void OnTestProgramStart(const testing::UnitTest& program) override {
        if (program.test_to_run_count() < 2) return;
        int failed = 0;
        for (int i = 0; i < program.total_test_suite_count(); ++i) {
            const testing::TestSuite& suite = *program.GetTestSuite(i);
            for (int j = 0; j < suite.total_test_count(); ++j) {
                const testing::TestInfo& test = *suite.GetTestInfo(j);
                if (test.should_run() && run_alone(test) != 0) ++failed;
            }
        }
        printf("%d of %d tests failed\n", failed, program.test_to_run_count());
        std::exit(failed == 0 ? 0 : 1);
    }
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new OneByOne);
    return RUN_ALL_TESTS();
}
