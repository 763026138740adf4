// The reader of the driver's information files, on files that a driver would not make.
#include "backend/phy/driver_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

using namespace dot11;

namespace {

constexpr size_t count = 16;

class DriverFile : public testing::Test {
  protected:
    DriverFile() {
        char name[] = "/tmp/driver_file.XXXXXX";
        folder_ = mkdtemp(name);
        alarm(200);  // an endless read ends the test
    }
    ~DriverFile() override {
        alarm(0);
        std::filesystem::remove_all(folder_);
    }

    std::string path() const { return folder_ + "/info"; }

    // The result, and in `value` the destination.
    int read(const std::string& file) { return read_driver_value(file.c_str(), "key", count, value); }

    int read_text(const std::string& text) {
        std::ofstream(path()) << text;
        return read(path());
    }

    char value[count + 1] = "untouched";

  private:
    std::string folder_;
};

TEST_F(DriverFile, CopiesWhatFollowsTheEqualsSign) {
    EXPECT_EQ(read_text("other=1\nkey=0123456789abcdefgh\n"), 0);
    EXPECT_EQ(std::string(value, count), "0123456789abcdef");
    EXPECT_EQ(read_text("key=5\n"), 0);
    EXPECT_STREQ(value, "5\n");
}

TEST_F(DriverFile, CopiesNoMoreThanIsAskedFor) {
    std::ofstream(path()) << "key=0123456789abcdefgh\n";
    EXPECT_EQ(read_driver_value(path().c_str(), "key", 3, value), 0);
    EXPECT_STREQ(value, "012ouched");
    char longer[count + 2] = {};
    EXPECT_EQ(read_driver_value(path().c_str(), "key", count + 1, longer), 0);
    EXPECT_STREQ(longer, "0123456789abcdef");
}

TEST_F(DriverFile, LeavesTheDestinationAloneWithoutAnEqualsSign) {
    EXPECT_EQ(read_text("key 5\nkey=6\n"), 0);
    EXPECT_STREQ(value, "untouched");
}

TEST_F(DriverFile, SaysWhenThereIsNoSuchLine) {
    EXPECT_EQ(read_text("other=1\n"), 1);
    EXPECT_EQ(read_text(""), 1);
    EXPECT_EQ(read(path() + ".none"), 1);
    EXPECT_EQ(read_driver_value(nullptr, "key", count, value), 1);
    EXPECT_STREQ(value, "untouched");
}

TEST_F(DriverFile, DoesNotOpenWhatIsNoRegularFile) {
    EXPECT_EQ(read("/dev/zero"), 1);
    EXPECT_EQ(read(std::filesystem::path(path()).parent_path()), 1);
    ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
    EXPECT_EQ(read(path()), 1);
}

TEST_F(DriverFile, FollowsALink) {
    std::ofstream(path() + ".target") << "key=5\n";
    std::filesystem::create_symlink(path() + ".target", path());
    EXPECT_EQ(read(path()), 0);
    EXPECT_STREQ(value, "5\n");
}

TEST_F(DriverFile, ReadsOnlyTheBeginningOfAHugeFile) {
    std::ofstream(path()) << "";
    std::filesystem::resize_file(path(), 1'000'000'000);
    EXPECT_EQ(read(path()), 1);
    const int file = open(path().c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    ASSERT_EQ(write(file, "\nkey=5\n", 7), 7);
    close(file);
    EXPECT_EQ(read(path()), 1);
}

TEST_F(DriverFile, LeavesNoFileOpen) {
    const int free_before = dup(0);
    close(free_before);
    read_text("key=5\n");
    read_text("other=5\n");
    read_text("key\n");
    const int free_after = dup(0);
    close(free_after);
    EXPECT_EQ(free_after, free_before);
}

}  // namespace
