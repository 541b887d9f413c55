#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace corvane {

/// A folder of the running test's own, removed with all it holds.
class TemporaryFolder {
public:
    TemporaryFolder() {
        const ::testing::TestInfo& test = *::testing::UnitTest::GetInstance()->current_test_info();
        path_ = std::filesystem::temp_directory_path() /
                (std::string("corvane_") + test.test_suite_name() + "_" + test.name());
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::filesystem::path path(const std::filesystem::path& name) const { return path_ / name; }

    /// Writes a file and answers its path.
    std::filesystem::path write(const std::filesystem::path& name, const std::string& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

private:
    std::filesystem::path path_;
};

}  // namespace corvane
